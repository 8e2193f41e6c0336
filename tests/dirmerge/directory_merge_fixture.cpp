#include "tests/dirmerge/directory_merge_fixture.h"

#include <algorithm>
#include <filesystem>
#include <regex>

#include "tests/support/document_builder.h"

namespace folioweld::testing {

namespace fs = std::filesystem;

namespace {
constexpr char kPrefix[] = "[Folioweld-MergeDirectory]=>";
}

DirectoryMergeFixture::DirectoryMergeFixture() : startFolder_(fs::current_path().string()) {
  for (const char* name : {"docs", "tmp", "config"}) folder_.MakeFolder(name);
  system_.Environment = {{"XDG_CONFIG_HOME", folder_.File("config")}, {"TMPDIR", folder_.File("tmp")}};
  program_.CommandLineOutput = Output();
}

DirectoryMergeFixture::~DirectoryMergeFixture() {
  fs::current_path(startFolder_);
}

void DirectoryMergeFixture::AddDocument(const std::string& name, const std::string& text) const {
  const std::string shown = text.empty() ? name.substr(0, name.find('.')) : text;
  folder_.Write("docs/" + name, SimpleDocument(1, shown));
}

void DirectoryMergeFixture::AddBrokenDocument(const std::string& name) const {
  std::string bytes = SimpleDocument(1, "broken");
  bytes.replace(bytes.find("/Size"), 5, "/Sice");
  folder_.Write("docs/" + name, bytes);
}

const DirectoryMergeReport& DirectoryMergeFixture::Merge() {
  merge_.MergeDirectory(Docs());
  return merge_.Report();
}

std::vector<std::string> DirectoryMergeFixture::LogLines() const {
  std::vector<std::string> lines;
  for (int i = 1; i <= ActivityLog::kRingSize; ++i) {
    const std::string& line =
        log_.LogLine(static_cast<std::int16_t>((log_.LogIndex() + i) % ActivityLog::kRingSize));
    if (!line.empty()) lines.push_back(line);
  }
  return lines;
}

std::vector<std::string> DirectoryMergeFixture::MergeLines() const {
  std::vector<std::string> lines;
  for (const std::string& line : LogLines()) {
    if (line.rfind(kPrefix, 0) == 0) lines.push_back(line.substr(sizeof kPrefix - 1));
  }
  return lines;
}

std::vector<std::string> DirectoryMergeFixture::MessageTexts() const {
  std::vector<std::string> texts;
  for (const auto& message : shell_.Messages) texts.push_back(message.Text);
  return texts;
}

std::vector<std::string> DirectoryMergeFixture::Temporaries() const {
  std::vector<std::string> names;
  for (const auto& entry : fs::directory_iterator(Tmp())) names.push_back(entry.path().filename().string());
  return names;
}

void DirectoryMergeFixture::ExpectIdle() const {
  EXPECT_FALSE(program_.ExternalBusy);
  EXPECT_FALSE(program_.Merge.SilentMode);
  EXPECT_FALSE(program_.Merge.AbortRequested);
  EXPECT_FALSE(program_.Merge.JobRunning);
  EXPECT_EQ(fs::current_path().string(), startFolder_);
  EXPECT_EQ(Temporaries(), Names());
  const auto left = std::find(shell_.Calls.rbegin(), shell_.Calls.rend(), "LeaveRunningState");
  const auto entered = std::find(shell_.Calls.rbegin(), shell_.Calls.rend(), "EnterRunningState");
  ASSERT_NE(left, shell_.Calls.rend()) << "the window's idle state was not restored";
  EXPECT_LT(left - shell_.Calls.rbegin(), entered - shell_.Calls.rbegin());
}

std::vector<std::string> PageTexts(const std::string& path) {
  const std::string bytes = ReadFile(path);
  static const std::regex shownText(R"(Td \((.*) \d+\) Tj)");
  std::vector<std::string> texts;
  for (auto match = std::sregex_iterator(bytes.begin(), bytes.end(), shownText);
       match != std::sregex_iterator(); ++match) {
    texts.push_back((*match)[1].str());
  }
  return texts;
}

}  // namespace folioweld::testing
