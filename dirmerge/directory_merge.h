#pragma once

#include <functional>
#include <string>
#include <vector>

#include "dirmerge/directory_merge_report.h"
#include "dirmerge/logging.h"
#include "dirmerge/program_state.h"
#include "dirmerge/source_list.h"
#include "engine/activity_log.h"
#include "engine/file_module.h"
#include "engine/merge_shell.h"
#include "engine/settings_store.h"

namespace folioweld {

/// Joins every acceptable document of a folder by running the two-document merge in rounds, two files at a
/// time, through temporary files. Everything given is owned by the caller and has to outlive this.
class DirectoryMerge {
 public:
  DirectoryMerge(ProgramState& program, FileModule& files, SettingsStore& settings, MergeShell& shell,
                 ActivityLog& log);

  /// What the menu's entry, a dropped folder and a command line do, hence the name: takes
  /// `CommandLineDirectory` or asks for the folder, stores it as "MergeCurDir" and runs the job. The current
  /// folder is afterwards what it was before.
  void MenuPdfMergeDir_Click();

  /// The job, for a full path that ends in a separator. A cancel is never lost, and every way out leaves the
  /// window idle, the flags cleared, the current folder as it was and no temporary file.
  void MergeDirectory(const std::string& directory);

  /// The same for documents and folders, joined in this order into `CommandLineOutput`, or into the file that
  /// is asked for when that is empty. A `problem` is told and ends the job; without sources there is no
  /// input.
  void MergeSources(const std::vector<Source>& sources, const std::string& problem);

  /// Of the last merge.
  [[nodiscard]] const DirectoryMergeReport& Report() const { return report_; }

 private:
  void Run(const std::vector<Source>& sources);
  /// A run that ends for want of memory ends as failed.
  void Guard(const std::function<void()>& run);
  void TellAtTheEnd(std::function<void(const std::string&)> Logging::*where, const char* line);

  ProgramState& program_;
  FileModule& files_;
  SettingsStore& settings_;
  MergeShell& shell_;
  ActivityLog& log_;
  DirectoryMergeReport report_;
};

}  // namespace folioweld
