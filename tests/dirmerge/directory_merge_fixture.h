#pragma once

#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "dirmerge/directory_merge.h"
#include "dirmerge/program_state.h"
#include "engine/activity_log.h"
#include "engine/file_module.h"
#include "engine/settings_store.h"
#include "tests/support/faulting_system.h"
#include "tests/support/recording_shell.h"
#include "tests/support/temp_folder.h"

namespace folioweld::testing {

/// A directory merge with everything around it, in a folder of its own: "docs" is the folder to be merged,
/// "tmp" the system's folder for temporary files, "config" holds the settings, "joined.pdf" is the output.
class DirectoryMergeFixture : public ::testing::Test {
 protected:
  DirectoryMergeFixture();
  ~DirectoryMergeFixture() override;

  [[nodiscard]] std::string Docs() const { return folder_.File("docs/"); }
  [[nodiscard]] std::string Doc(const std::string& name) const { return Docs() + name; }
  [[nodiscard]] std::string Tmp() const { return folder_.File("tmp/"); }
  [[nodiscard]] std::string Output() const { return folder_.File("joined.pdf"); }

  /// Writes a document of one page that shows `text`, or the name without what follows its first dot.
  void AddDocument(const std::string& name, const std::string& text = "") const;
  /// Writes a document that the acceptance test takes and whose first pass fails.
  void AddBrokenDocument(const std::string& name) const;

  /// Runs the job on "docs", with the output named.
  const DirectoryMergeReport& Merge();

  /// Every line of the log, the oldest first (at most the last 300).
  [[nodiscard]] std::vector<std::string> LogLines() const;
  /// Those of the directory merge, without its prefix.
  [[nodiscard]] std::vector<std::string> MergeLines() const;
  /// The texts of the messages that were shown.
  [[nodiscard]] std::vector<std::string> MessageTexts() const;
  /// The names in the folder for temporary files.
  [[nodiscard]] std::vector<std::string> Temporaries() const;

  /// What has to hold after every way out.
  void ExpectIdle() const;

  TempFolder folder_;
  FaultingSystem system_;
  ProgramState program_;
  RecordingShell shell_;
  ActivityLog log_{shell_};
  FileModule files_{system_};
  SettingsStore settings_{system_};
  DirectoryMerge merge_{program_, files_, settings_, shell_, log_};
  std::string startFolder_;
};

/// The texts that the pages of a document show, in the order in which they stand in the file.
[[nodiscard]] std::vector<std::string> PageTexts(const std::string& path);

using Names = std::vector<std::string>;

}  // namespace folioweld::testing
