// Documents and folders that a command line names, joined in the order given.

#include <cerrno>
#include <chrono>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>
#include <vector>

#include "dirmerge/arguments.h"
#include "dirmerge/command_line.h"
#include "dirmerge/start_settings.h"
#include "tests/dirmerge/directory_merge_fixture.h"
#include "tests/support/document_builder.h"

namespace folioweld {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using testing::Exists;
using ::testing::HasSubstr;
using testing::Names;
using testing::PageTexts;

class Sources : public testing::DirectoryMergeFixture {
 protected:
  Sources() {
    std::filesystem::current_path(folder_.Path());
    for (const char* name : {"a", "b"}) AddDocument(name);
    folder_.MakeFolder("more");
    for (const char* name : {"c", "d"}) {
      folder_.Write(std::string("more/") + name, testing::SimpleDocument(1, name));
    }
    folder_.Write("cover.pdf", testing::SimpleDocument(1, "cover"));
  }
  ~Sources() override { std::filesystem::current_path(startFolder_); }

  ExitStatus Join(std::vector<std::string> sources, const std::string& output = "joined.pdf") {
    sources.insert(sources.begin(), output);
    Arguments arguments = ParseArguments(sources);
    TakeChoices(arguments, program_);
    EXPECT_EQ(ProcessCommandLine(arguments, program_, files_, settings_, merge_), CommandLineOutcome::Done);
    return StatusOf(merge_.Report());
  }
};

TEST_F(Sources, AreJoinedInTheOrderGiven) {
  EXPECT_EQ(Join({"cover.pdf", "more/", "docs", "cover.pdf"}), kEverythingJoined);
  EXPECT_EQ(PageTexts(folder_.File("joined.pdf")), (Names{"cover", "c", "d", "a", "b", "cover"}));
}

TEST_F(Sources, OrderEachFolderByItselfAndNamedDocumentsNotAtAll) {
  program_.SortOrder = -1;
  EXPECT_EQ(Join({"docs", "more/d", "more/c", "more"}), kEverythingJoined);
  EXPECT_EQ(PageTexts(folder_.File("joined.pdf")), (Names{"b", "a", "d", "c", "d", "c"}));
  EXPECT_THAT(LogLines(), Contains("[Folioweld-MergeDirectory]=>File name(0) = \"c\""))
      << "the second folder begins at index 0 as well";
}

TEST_F(Sources, OrderAFolderByDateWhereverTheProgramWasStarted) {
  const auto now = std::filesystem::last_write_time(folder_.File("more/c"));
  std::filesystem::last_write_time(folder_.File("more/d"), now - std::chrono::hours(48));
  program_.SortOrder = 2;
  EXPECT_EQ(Join({"cover.pdf", "more"}), kEverythingJoined);
  EXPECT_EQ(PageTexts(folder_.File("joined.pdf")), (Names{"cover", "d", "c"}));
}

TEST_F(Sources, MayBeOneDocument) {
  EXPECT_EQ(Join({"cover.pdf"}), kEverythingJoined);
  EXPECT_EQ(PageTexts(folder_.File("joined.pdf")), Names{"cover"});
  EXPECT_EQ(settings_.ReadSetting("MergeCurDir"), "") << "stored for a folder only";
}

TEST_F(Sources, StoreAnOnlyFolderAndNoOther) {
  EXPECT_EQ(Join({"docs", "more"}), kEverythingJoined);
  EXPECT_EQ(settings_.ReadSetting("MergeCurDir"), "");
  EXPECT_EQ(Join({"docs"}), kEverythingJoined);
  EXPECT_EQ(settings_.ReadSetting("MergeCurDir"), Docs());
}

TEST_F(Sources, MayHoldAnyCharacterInTheirNames) {
  for (const char* name : {"--help", "-v", "x|y", "\xFF", "two\nlines"}) {
    folder_.Write(name, testing::SimpleDocument(1, "odd"));
  }
  EXPECT_EQ(Join({"--help", "-v", "x|y", "\xFF", "two\nlines"}, "out|put"), kEverythingJoined);
  EXPECT_EQ(PageTexts(folder_.File("out|put")).size(), 5U);
}

TEST_F(Sources, LogTheRequestOnce) {
  EXPECT_EQ(Join({"docs", "more"}), kEverythingJoined);
  int requests = 0;
  for (const std::string& line : LogLines())
    requests += line.find("Request to merge towards") != std::string::npos;
  EXPECT_EQ(requests, 1);
}

TEST_F(Sources, ThatDoNotExistEndTheRunBeforeAnythingIsWritten) {
  folder_.Write("joined.pdf", "older");
  EXPECT_EQ(Join({"cover.pdf", "missing.pdf"}), kNoOutput);
  ASSERT_EQ(shell_.Messages.size(), 1U);
  EXPECT_THAT(shell_.Messages[0].Text, HasSubstr("\"missing.pdf\""));
  EXPECT_EQ(testing::ReadFile(folder_.File("joined.pdf")), "older");
}

TEST_F(Sources, ThatAreNeitherFilesNorFoldersEndTheRun) {
  ASSERT_EQ(mkfifo(folder_.File("pipe").c_str(), 0600), 0);
  for (const char* name : {"pipe", "/dev/null", ""}) {
    shell_.Messages.clear();
    EXPECT_EQ(Join({"cover.pdf", name}), kNoOutput) << name;
    EXPECT_EQ(shell_.Messages.size(), 1U) << name;
  }
  EXPECT_FALSE(Exists(folder_.File("joined.pdf")));
}

TEST_F(Sources, ThatAreRefusedAreNamedWhateverTheyAreAndTheRestIsJoined) {
  folder_.Write("notes.txt", "no document at all");
  EXPECT_EQ(Join({"cover.pdf", "notes.txt"}), kJoinedWithLosses);
  EXPECT_EQ(PageTexts(folder_.File("joined.pdf")), Names{"cover"});
  EXPECT_EQ(merge_.Report().RefusedDocuments, Names{"notes.txt"});
  ASSERT_GE(shell_.Notices.size(), 2U);
  EXPECT_EQ(shell_.Notices[0],
            "[Folioweld-MergeDirectory]=>File: \"notes.txt\"  is not acceptable for merging");
  EXPECT_THAT(shell_.Notices[1], HasSubstr("  because of "));
}

TEST_F(Sources, NameADocumentOfAFolderWithTheFolder) {
  folder_.Write("more/bad.pdf", "%PDF-1.4 broken");
  EXPECT_EQ(Join({"docs", "more"}), kJoinedWithLosses);
  EXPECT_EQ(merge_.Report().RefusedDocuments, Names{"more/bad.pdf"});
}

TEST_F(Sources, TellOfAFolderWithoutDocumentsBesideOthers) {
  folder_.MakeFolder("empty");
  EXPECT_EQ(Join({"cover.pdf", "empty"}), kJoinedWithLosses);
  EXPECT_EQ(merge_.Report().EmptyFolders, Names{"empty"});
  EXPECT_THAT(
      shell_.Notices,
      ElementsAre("[Folioweld-MergeDirectory]=>Folder: \"empty\"  holds no document that can be joined"));
}

TEST_F(Sources, WithoutAnyDocumentAreNoInput) {
  folder_.MakeFolder("empty");
  folder_.MakeFolder("empty2");
  EXPECT_EQ(Join({"empty", "empty2"}), kNoOutput);
  ASSERT_EQ(shell_.Messages.size(), 1U);
  EXPECT_EQ(shell_.Messages[0].Text, "NO INPUT FILE!  I DIDN'T DO ANYTHING");
}

TEST_F(Sources, InAFolderThatCannotBeEnteredAbortTheRun) {
  system_.Decide = [this](const testing::FaultingSystem::Call& call, std::size_t) {
    const bool fails = call.Name == "SetCurrentDirectory" && call.Path == folder_.File("more/");
    return testing::FaultingSystem::Fault{fails ? EACCES : 0, 0};
  };
  EXPECT_EQ(Join({"cover.pdf", "more"}), kNoOutput);
  ASSERT_EQ(shell_.Messages.size(), 1U);
  EXPECT_EQ(shell_.Messages[0].Text, "Merge of documents ABORTed\r(could not reach intput directory)");
  EXPECT_FALSE(Exists(folder_.File("joined.pdf")));
}

TEST_F(Sources, AreNeverTheOutputUnderWhateverName) {
  std::filesystem::create_hard_link(folder_.File("cover.pdf"), folder_.File("same.pdf"));
  for (const char* output : {"cover.pdf", "same.pdf", "./docs/../cover.pdf"}) {
    shell_.Messages.clear();
    EXPECT_EQ(Join({"docs", "cover.pdf"}, output), kNoOutput) << output;
    ASSERT_EQ(shell_.Messages.size(), 1U);
    EXPECT_THAT(shell_.Messages[0].Text, HasSubstr(" cannot be created."));
  }
  EXPECT_EQ(testing::ReadFile(folder_.File("cover.pdf")), testing::SimpleDocument(1, "cover"));
}

TEST_F(Sources, AreNeverTheOutputEvenWhenTheyAreNoDocuments) {
  folder_.Write("notes.txt", "not lost");
  EXPECT_EQ(Join({"cover.pdf", "notes.txt"}, "notes.txt"), kNoOutput);
  EXPECT_EQ(testing::ReadFile(folder_.File("notes.txt")), "not lost");
}

TEST_F(Sources, AskForAnOutputThatIsNotNamed) {
  shell_.OutputAnswer = folder_.File("asked.pdf");
  EXPECT_EQ(Join({"cover.pdf", "docs"}, ""), kEverythingJoined);
  EXPECT_EQ(PageTexts(folder_.File("asked.pdf")), (Names{"cover", "a", "b"}));
}

TEST_F(Sources, AnnounceEveryMergeOfAllRounds) {
  EXPECT_EQ(Join({"cover.pdf", "docs", "more"}), kEverythingJoined);
  EXPECT_EQ(shell_.Merges,
            (Names{"1/4 round 1/3: a", "2/4 round 1/3: c", "3/4 round 2/3: b", "4/4 round 3/3: d"}));
  shell_.Merges.clear();
  EXPECT_EQ(Join({"cover.pdf"}), kEverythingJoined);
  EXPECT_EQ(shell_.Merges, Names{"1/1 round 1/1: cover.pdf"});
}

TEST_F(Sources, ChangeNothingThatIsStored) {
  ASSERT_EQ(settings_.WriteSetting("MenuSort", "2"), 0);
  program_.SortOrder = 2;
  Arguments arguments = ParseArguments({"--order=name-reversed", "-v", "joined.pdf", "docs"});
  TakeChoices(arguments, program_);
  EXPECT_EQ(program_.SortOrder, -1);
  EXPECT_TRUE(program_.Merge.LogEnabled);
  EXPECT_EQ(settings_.ReadSetting("MenuSort"), "2");
}

class SourceNames : public ::testing::Test {
 protected:
  Names Read(const std::string& list) {
    folder_.Write("list", list);
    Arguments arguments = ParseArguments({"--files0-from=" + folder_.File("list"), "out.pdf"});
    std::string problem;
    EXPECT_TRUE(ReadSourceNames(RealSystem(), arguments, problem)) << problem;
    return arguments.Sources;
  }
  testing::TempFolder folder_;
};

TEST_F(SourceNames, AreEndedByANulEach) {
  using namespace std::string_literals;
  EXPECT_EQ(Read("a\0b\nc\0"s), (Names{"a", "b\nc"}));
  EXPECT_EQ(Read("a\0last"s), (Names{"a", "last"}));
  EXPECT_EQ(Read("a\0\0b\0"s), (Names{"a", "", "b"})) << "an empty name is a source that does not exist";
  EXPECT_EQ(Read(""), Names{});
}

TEST_F(SourceNames, MayBeLongerThanOneBlock) {
  std::string list;
  for (int i = 0; i < 30000; ++i) list += "name" + std::to_string(i) + '\0';
  const Names names = Read(list);
  ASSERT_EQ(names.size(), 30000U);
  EXPECT_EQ(names.back(), "name29999");
}

TEST_F(SourceNames, InAFileThatCannotBeReadAreAProblem) {
  Arguments arguments = ParseArguments({"--files0-from=" + folder_.File("missing"), "out.pdf"});
  std::string problem;
  EXPECT_FALSE(ReadSourceNames(RealSystem(), arguments, problem));
  EXPECT_THAT(problem, HasSubstr("missing"));
  arguments = ParseArguments({"--files0-from=" + folder_.Path(), "out.pdf"});
  EXPECT_FALSE(ReadSourceNames(RealSystem(), arguments, problem)) << "a folder is no list";
}

}  // namespace
}  // namespace folioweld
