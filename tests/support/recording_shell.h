#pragma once

#include <functional>
#include <string>
#include <vector>

#include "engine/merge_shell.h"

namespace folioweld::testing {

/// Remembers what a job showed and asked, and answers its questions.
class RecordingShell : public MergeShell {
 public:
  struct Message {
    MessageIcon Icon;
    std::string Title;
    std::string Text;
  };

  void HandleEvents() override {
    ++Yields;
    if (OnYield) OnYield();
  }
  void RefreshControls() override { Call("RefreshControls"); }
  void DisableInputPicking() override { Call("DisableInputPicking"); }
  void EnterRunningState() override { Call("EnterRunningState"); }
  void LeaveRunningState() override { Call("LeaveRunningState"); }
  void ShowMessage(MessageIcon icon, const std::string& title, const std::string& text) override {
    Messages.push_back({icon, title, text});
    Events.emplace_back("ShowMessage");
  }
  std::string AskForOutputFile(const OutputQuestion& question) override {
    OutputQuestions.push_back(question);
    return OutputAnswer;
  }
  std::string BrowseForFolder(const std::string& title, const std::string& initialFolder) override {
    FolderQuestions.emplace_back(title, initialFolder);
    return FolderAnswer;
  }
  void ShowOutput(const std::string& path) override {
    ShownOutputs.push_back(path);
    Events.emplace_back("ShowOutput");
  }
  void MergeStarts(const MergeNumber& number, const std::string& document) override {
    Merges.push_back(std::to_string(number.Merge) + "/" + std::to_string(number.Merges) + " round " +
                     std::to_string(number.Round) + "/" + std::to_string(number.Rounds) + ": " + document);
  }
  void PreparingStarts(int number, int documents, const std::string& document) override {
    Preparings.push_back(std::to_string(number) + "/" + std::to_string(documents) + ": " + document);
  }
  void CarryingStarts(const std::string& output) override { Carryings.push_back(output); }
  void Notice(const std::string& line) override {
    Notices.push_back(line);
    Events.emplace_back("Notice");
  }

  long Yields = 0;
  std::function<void()> OnYield;
  /// Called with the line's number after every change of a status line.
  std::function<void(int)> OnStatus;
  std::vector<std::string> Calls;
  /// The names of all calls but `Yield` and the questions, in their order; a change of a status line is
  /// "0|", "1|" or "2|" and the whole text of the line.
  std::vector<std::string> Events;
  std::vector<Message> Messages;
  std::vector<OutputQuestion> OutputQuestions;
  std::vector<std::pair<std::string, std::string>> FolderQuestions;
  std::vector<std::string> ShownOutputs;
  std::vector<std::string> Notices;
  std::vector<std::string> Merges;      ///< "3/4 round 2/3: name"
  std::vector<std::string> Preparings;  ///< "1/2: name"
  std::vector<std::string> Carryings;   ///< names of outputs
  std::string OutputAnswer;
  std::string FolderAnswer;

 protected:
  void StatusTextChanged(int line) override {
    Events.push_back(std::to_string(line) + "|" + StatusText(line));
    if (OnStatus) OnStatus(line);
  }

 private:
  void Call(const char* name) {
    Calls.emplace_back(name);
    Events.emplace_back(name);
  }
};

}  // namespace folioweld::testing
