#pragma once

#include <string>
#include <vector>

#include "engine/activity_log.h"
#include "engine/file_module.h"
#include "engine/merge_job.h"
#include "engine/merge_state.h"
#include "tests/support/faulting_system.h"
#include "tests/support/recording_shell.h"
#include "tests/support/temp_folder.h"

namespace folioweld::testing {

/// Everything a two-document merge needs, with a folder of its own. The inputs are written to "a.pdf" and
/// "b.pdf", the output is "out.pdf"; tests change the names where they matter.
class MergeRun {
 public:
  MergeRun();
  /// Writes both inputs and names them; an empty text leaves the place empty.
  MergeRun(const std::string& first, const std::string& second);

  /// Runs the job with the names as they stand.
  void Run() { Job.cmdOK_Click(); }

  /// Opens, accepts and reads the inputs, so that the builder can go on where the job would.
  [[nodiscard]] bool Read();

  [[nodiscard]] bool Failed() const { return State.MergeStatus == -1; }
  /// The lines of the log, the oldest first.
  [[nodiscard]] std::vector<std::string> LogLines() const;
  [[nodiscard]] std::string Output() const { return ReadFile(OutputPath); }
  [[nodiscard]] std::string Status(int line) const { return Shell.StatusText(line); }

  TempFolder Folder;
  FaultingSystem System;
  FileModule Files{System};
  MergeState State;
  RecordingShell Shell;
  ActivityLog Log{Shell};
  MergeJob Job{State, Files, Shell, Log};
  std::string FirstPath;
  std::string SecondPath;
  std::string OutputPath;
};

/// How many files the process has open.
[[nodiscard]] std::size_t OpenHandles();

/// How often `part` occurs in the text.
[[nodiscard]] int CountOf(const std::string& text, const std::string& part);

/// The object's bytes in a written document, from its header to "endobj"; found through the document's own
/// cross-reference table, whose form is fixed.
[[nodiscard]] std::string WrittenObject(const std::string& document, int number);

/// The 20 bytes of the object's cross-reference entry in a written document.
[[nodiscard]] std::string WrittenEntry(const std::string& document, int number);

}  // namespace folioweld::testing
