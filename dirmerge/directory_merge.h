#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "dirmerge/document_list.h"
#include "dirmerge/program_state.h"
#include "dirmerge/temporary_files.h"
#include "engine/activity_log.h"
#include "engine/file_module.h"
#include "engine/merge_job.h"
#include "engine/merge_shell.h"
#include "engine/settings_store.h"

namespace folioweld {

/// What came of a directory merge; names are without the folder.
struct DirectoryMergeReport {
  bool OutputWritten = false;
  bool Cancelled = false;
  int FailedMerges = 0;
  std::vector<std::string> RefusedDocuments;
  std::vector<std::string> EncryptedDocuments;
  std::vector<std::string> MissingDocuments;  ///< accepted, but not in the output that was written

  /// The output was written and every document of the folder is in it, readable.
  [[nodiscard]] bool Complete() const;
};

/// Joins every acceptable document of a folder by running the two-document merge in rounds, two files at a
/// time, through temporary files. Everything given is owned by the caller and has to outlive this.
class DirectoryMerge {
 public:
  DirectoryMerge(ProgramState& program, FileModule& files, SettingsStore& settings, MergeShell& shell,
                 ActivityLog& log);

  /// The menu's entry: takes `CommandLineDirectory` or asks for the folder, stores it as "MergeCurDir" and
  /// runs the job. The current folder is afterwards what it was before.
  void MenuPdfMergeDir_Click();

  /// The job, for a full path that ends in a separator. A cancel is never lost, and every way out leaves the
  /// window idle, the flags cleared, the current folder as it was and no temporary file.
  void MergeDirectory(const std::string& directory);

  /// Of the last `MergeDirectory`.
  [[nodiscard]] const DirectoryMergeReport& Report() const { return report_; }

 private:
  ProgramState& program_;
  FileModule& files_;
  SettingsStore& settings_;
  MergeShell& shell_;
  ActivityLog& log_;
  DirectoryMergeReport report_;
};

}  // namespace folioweld
