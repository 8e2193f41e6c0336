#pragma once

#include <functional>
#include <memory>
#include <string>
#include <sys/types.h>
#include <utility>
#include <vector>

namespace folioweld::testing {

/// Waits for a condition by asking again and again; false when it did not come true within two minutes.
[[nodiscard]] bool WaitUntil(const std::function<bool()>& condition);

/// Whether the process works no more: it has ended, though its parent may not have asked for its end yet.
[[nodiscard]] bool HasEnded(int process);

/// A program started by a test. What it writes is kept; it is killed when it still runs at the end.
class ChildProgram {
 public:
  struct Setup {
    std::string Program;
    std::vector<std::string> Arguments;
    std::string Folder;  ///< where it starts; empty = the test's own current folder
    /// On top of the test's own variables, of which those for screens, settings and temporary files are left
    /// out.
    std::vector<std::pair<std::string, std::string>> Environment;
    /// Standard input and error are a pseudo-terminal of so many columns; 0 = the null device and a file.
    int TerminalColumns = 0;
    std::vector<int> ClosedStreams;     ///< of 0 to 2
    std::vector<int> IgnoredSignals;    ///< all others have the system's own way
    std::function<void()> BeforeStart;  ///< runs in the child; may only make system calls
  };

  explicit ChildProgram(const Setup& setup);
  ChildProgram(const ChildProgram&) = delete;
  ChildProgram& operator=(const ChildProgram&) = delete;
  ~ChildProgram();

  /// The exit status, or 128 and the signal that ended it. The test fails when it runs on for two minutes.
  int Wait();
  void Signal(int signal) const;
  /// Its process id while it runs.
  [[nodiscard]] int Id() const;
  /// Types on its terminal.
  void Type(const std::string& keys) const;

  /// What it has written so far.
  [[nodiscard]] std::string Output() const;
  [[nodiscard]] std::string Errors() const;

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace folioweld::testing
