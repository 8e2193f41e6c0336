#pragma once

#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>
#include <vector>

#include "engine/settings_store.h"
#include "tests/support/child_program.h"
#include "tests/support/document_builder.h"
#include "tests/support/faulting_system.h"
#include "tests/support/temp_folder.h"

namespace folioweld::testing {

/// The real program, in a folder of its own: "docs" is to be joined, "tmp" takes the temporary files,
/// "config" the settings. It starts in the folder, without a screen.
class ProgramFixture : public ::testing::Test {
 protected:
  struct Outcome {
    int Status = -1;
    std::string Output;
    std::string Errors;
  };

  static constexpr int kLongMergePages = 1500;
  static constexpr const char* kLongMergeDocument = "1";

  ProgramFixture() {
    for (const char* name : {"docs", "tmp", "config"}) folder_.MakeFolder(name);
    setup_.Program = FOLIOWELD_PROGRAM;
    setup_.Folder = folder_.Path();
    setup_.Environment = {{"XDG_CONFIG_HOME", folder_.File("config")}, {"TMPDIR", folder_.File("tmp")}};
    settingsSystem_.Environment = setup_.Environment;
  }

  [[nodiscard]] std::string Doc(const std::string& name) const { return folder_.File("docs/" + name); }
  void AddDocument(const std::string& name) const { folder_.Write("docs/" + name, SimpleDocument(1, name)); }

  /// A document that the acceptance test takes and whose first pass fails.
  void AddBrokenDocument(const std::string& name) const {
    std::string bytes = SimpleDocument(1, name);
    bytes.replace(bytes.find("/Size"), 5, "/Sice");
    folder_.Write("docs/" + name, bytes);
  }

  /// So much to join that no test sees its end: half a minute on an idle machine. One document under many
  /// names, of which kLongMergeDocument is one.
  void AddLongMerge() const {
    folder_.Write("docs/0", SimpleDocument(kLongMergePages));
    for (int i = 1; i < 4000; ++i) std::filesystem::create_hard_link(Doc("0"), Doc(std::to_string(i)));
  }

  Outcome Run(const std::vector<std::string>& arguments) {
    setup_.Arguments = arguments;
    ChildProgram program(setup_);
    const int status = program.Wait();
    return {status, program.Output(), program.Errors()};
  }

  /// The last line of a run that could not join a document.
  [[nodiscard]] static std::string Advice() {
    const std::filesystem::path program = FOLIOWELD_PROGRAM;
    const bool isThere = std::filesystem::exists(program.parent_path() / "folioweld-prepare");
    return std::string("folioweld --prepare joins many of these") +
           (isThere ? "" : " (package folioweld-extras)") + "\n";
  }

  /// The run has the status, writes exactly this to standard error and nothing to standard output.
  void ExpectRun(const std::vector<std::string>& arguments, int status, const std::string& errors) {
    const Outcome outcome = Run(arguments);
    EXPECT_EQ(outcome.Status, status);
    EXPECT_EQ(outcome.Errors, errors);
    EXPECT_EQ(outcome.Output, "");
    EXPECT_TRUE(Temporaries().empty());
  }

  [[nodiscard]] std::vector<std::string> Temporaries() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder_.File("tmp"))) {
      names.push_back(entry.path().filename().string());
    }
    return names;
  }

  /// How many pages the document has: every page of the test's documents shows one text.
  [[nodiscard]] static int Pages(const std::string& path) {
    const std::string bytes = ReadFile(path);
    int count = 0;
    for (auto at = bytes.find(") Tj ET"); at != std::string::npos; at = bytes.find(") Tj ET", at + 1))
      ++count;
    return count;
  }

  std::string Setting(const std::string& name) { return SettingsStore(settingsSystem_).ReadSetting(name); }
  void StoreSetting(const std::string& name, const std::string& text) {
    ASSERT_EQ(SettingsStore(settingsSystem_).WriteSetting(name, text), 0);
  }

  TempFolder folder_;
  ChildProgram::Setup setup_;

 private:
  FaultingSystem settingsSystem_;
};

}  // namespace folioweld::testing
