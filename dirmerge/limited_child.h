#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/windows_api.h"

namespace folioweld {

/// Milliseconds to wait for what a program writes: the window handles no event meanwhile.
inline constexpr int kLongestWait = 20;

/// How a program is started.
struct ChildCall {
  std::string Program;                    ///< full path
  std::vector<WindowsAPI::Handle> Files;  ///< open files, which it gets under their numbers
  std::int64_t FileSize = 0;              ///< bytes; it writes no file that is longer
  std::vector<std::string> Options;       ///< after those that give the files and the limits
};

/// What a program says of its work: a line "kind: text" of its standard error.
struct ChildLine {
  std::string Kind;
  std::string Text;
};

/// A program of this project that works on documents of others in a process of its own. It gets open files
/// and no names, sets itself limits of memory, processor time and size, and is ended here when it takes too
/// long.
class LimitedChild {
 public:
  /// `called` is what it is called where it fails, such as "the program that prepares".
  LimitedChild(WindowsAPI& system, std::string called);
  LimitedChild(const LimitedChild&) = delete;
  LimitedChild& operator=(const LimitedChild&) = delete;
  /// Ends it when it still runs, and stays until it is gone, but not for long.
  ~LimitedChild();

  /// Where it cannot be started, it does not run and `Failure` says why.
  void Start(const ChildCall& call);
  /// Takes what it has written, and whether it has ended or taken too long.
  void Look();
  [[nodiscard]] bool Running() const { return running_; }
  /// Can be read when `Look` has something to do; -1 when it has said its last word.
  [[nodiscard]] WindowsAPI::Handle Errors() const { return process_.Errors; }
  /// Tells it to end; several are ended quickest when each is told so before the first is waited for.
  void Kill();
  /// Stays until one that was told to end is gone, but not longer. Whether it is.
  [[nodiscard]] bool WaitForEnd(std::int64_t milliseconds);

  // Once it no longer runs.

  /// Why it has no exit status; empty where it has one.
  [[nodiscard]] const std::string& Failure() const { return failure_; }
  [[nodiscard]] int Status() const { return status_; }
  /// For a status that means nothing: how it ended, in words.
  [[nodiscard]] std::string WhyEnded() const;
  [[nodiscard]] std::vector<ChildLine> Lines() const;
  /// Whether it has written more than is kept.
  [[nodiscard]] bool SaidTooMuch() const;

 private:
  void ReadWords();
  void TakeEnd(int status);

  WindowsAPI& system_;
  std::string called_;
  StartedProcess process_;
  std::int64_t started_ = 0;
  std::string words_;
  std::string failure_;
  int status_ = -1;
  bool running_ = false;  ///< and is watched
  bool gone_ = true;
};

}  // namespace folioweld
