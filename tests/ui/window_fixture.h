#pragma once

#include <QAction>
#include <QApplication>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <deque>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tests/support/document_builder.h"
#include "tests/support/faulting_system.h"
#include "tests/support/temp_folder.h"
#include "ui/main_window.h"

namespace folioweld::testing {

/// Answers every question of the window and remembers what was asked. Without a prepared answer everything
/// is cancelled.
class AnsweringDialogs : public Dialogs {
 public:
  bool ShowBox(const BoxRequest& request) override;
  std::string AskOpenFile(const FileRequest& request) override;
  std::string AskSaveFile(const FileRequest& request) override;
  std::string AskFolder(const FolderRequest& request) override;
  std::int16_t AskSortOrder(std::int16_t current) override;
  void CloseAll() override { Closed = true; }

  std::deque<bool> BoxAnswers;
  std::deque<std::string> OpenAnswers;
  std::deque<std::string> SaveAnswers;
  std::deque<std::string> FolderAnswers;
  std::optional<std::int16_t> SortAnswer;
  /// Called while any dialog is open.
  std::function<void()> WhileOpen;

  std::vector<BoxRequest> Boxes;
  std::vector<FileRequest> OpenQuestions;
  std::vector<FileRequest> SaveQuestions;
  std::vector<FolderRequest> FolderQuestions;
  std::vector<std::int16_t> SortQuestions;
  bool Closed = false;

 private:
  std::string Next(std::deque<std::string>& answers);
};

/// For what is waited for at most: a busy machine takes a while.
inline constexpr int kPatienceMillis = 120'000;

/// The real system with a clock that runs fast, so that a job handles events at each of its yields, and with
/// viewers that are no processes.
class WindowSystem : public FaultingSystem {
 public:
  std::int64_t MillisecondsNow() override {
    return FastClock ? now_ += 100 : FaultingSystem::MillisecondsNow() / Slowness;
  }
  SystemResult<bool> PollProcess(Process child) override;
  SystemError TerminateProcess(ViewerProcess process) override;

  static constexpr Process kViewer = 4711;

  bool FastClock = true;
  std::int64_t Slowness = 1;  ///< of the clock that does not run fast
  bool ViewerRuns = false;
  int Polls = 0;
  std::vector<ViewerProcess> Terminated;

 private:
  std::int64_t now_ = 1000;
};

class FakeDesktop : public ViewerDesktop {
 public:
  explicit FakeDesktop(WindowSystem& system) : system_(system) {}

  std::string FindPdfReader(const std::string& extension) override;
  bool LaunchProcess(const std::string& document, ViewerProcess& process) override;
  bool CloseThreadWindows(ViewerProcess process) override;
  bool AskService(const std::string& document) override;
  Answer ServiceAnswer() override { return ServiceSays; }
  bool ServiceHasWindow() override { return ServiceWindow; }
  void CloseServiceWindows() override;

  std::string Reader = "/usr/bin/some reader";
  bool Starts = true;
  bool EndsAtOnce = false;
  bool HasWindows = true;
  bool IsService = false;
  Answer ServiceSays = Answer::None;
  bool ServiceWindow = false;
  int ServiceWindowsClosed = 0;
  std::vector<std::string> Extensions;
  std::vector<std::string> AskedFor;
  std::vector<std::string> Launched;
  std::vector<ViewerProcess> Asked;

 private:
  WindowSystem& system_;
};

/// A window with a settings file and a temporary folder of its own.
class WindowFixture : public ::testing::Test {
 protected:
  WindowFixture();
  ~WindowFixture() override;

  /// Makes, loads and activates the window.
  void Open(const std::string& commandLine = {});
  void Close() { window_.reset(); }

  [[nodiscard]] Folioweld& Window() { return *window_; }
  [[nodiscard]] MergeState& Merge() { return window_->Program().Merge; }
  [[nodiscard]] std::string& FileName(int slot) { return Merge().DocFileName(slot); }

  template <typename T>
  [[nodiscard]] T* Find(const char* name) {
    T* found = window_->findChild<T*>(QString::fromLatin1(name));
    EXPECT_NE(found, nullptr) << name;
    return found;
  }
  [[nodiscard]] QAbstractButton* Button(const char* name) { return Find<QAbstractButton>(name); }
  [[nodiscard]] QAction* Item(const char* name) { return Find<QAction>(name); }
  [[nodiscard]] std::string Label(const char* name) { return Find<QLabel>(name)->text().toStdString(); }
  [[nodiscard]] std::string Caption(const char* name) { return Button(name)->text().toStdString(); }
  [[nodiscard]] bool Enabled(const char* name) { return Find<QWidget>(name)->isEnabled(); }
  /// "cmdOK" or "cmdCancel"; anything else when it is not exactly one of them.
  [[nodiscard]] std::string DefaultButton();
  /// The names of the enabled ones of the buttons that change a file name or start the merge, in the order of
  /// the places.
  [[nodiscard]] std::string EnabledButtons();
  [[nodiscard]] std::string Marks();
  [[nodiscard]] std::string Stored(const std::string& setting);

  void Click(const char* button) { QTest::mouseClick(Button(button), Qt::LeftButton); }
  /// Calls the step at every turn of the event loop, from now to the end of the test.
  void AtEveryTurn(std::function<void()> step);
  [[nodiscard]] static bool WaitFor(const std::function<bool()>& condition) {
    return QTest::qWaitFor(condition, kPatienceMillis);
  }

  /// Writes a document that can be joined and returns its path.
  std::string Document(const std::string& name, int pages = 1);
  /// Writes a document of which the job warns: its /Info names its page.
  std::string WarnedDocument(const std::string& name);
  /// Two inputs and an output, chosen.
  void ChooseAll();

  TempFolder folder_;
  WindowSystem system_;
  AnsweringDialogs dialogs_;
  FakeDesktop desktop_{system_};
  std::unique_ptr<Folioweld> window_;
  std::optional<int> ended_;  ///< the status that the program ended with
  std::string startFolder_;

 private:
  std::vector<std::unique_ptr<QTimer>> timers_;
};

}  // namespace folioweld::testing
