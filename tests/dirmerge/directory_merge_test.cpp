// The directory merge from its first step to its last.

#include "dirmerge/directory_merge.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

#include "tests/dirmerge/directory_merge_fixture.h"
#include "tests/support/document_builder.h"

namespace folioweld {
namespace {

using testing::Exists;
using testing::FaultingSystem;
using testing::Names;
using testing::PageTexts;
using testing::ReadFile;

class DirectoryMergeTest : public testing::DirectoryMergeFixture {
 protected:
  void ExpectMessage(MessageIcon icon, const std::string& title, const std::string& text) const {
    ASSERT_EQ(shell_.Messages.size(), 1U);
    EXPECT_EQ(shell_.Messages[0].Icon, icon);
    EXPECT_EQ(shell_.Messages[0].Title, title);
    EXPECT_EQ(shell_.Messages[0].Text, text);
  }

  void ExpectRefusedOutput(const std::string& output) {
    program_.CommandLineOutput = output;
    shell_.Messages.clear();
    EXPECT_FALSE(Merge().OutputWritten);
    ExpectMessage(MessageIcon::Exclamation, "Folioweld",
                  "The output file\r\n" + output + "\r\n cannot be created.\r\nI cannot do this operation!");
    ExpectIdle();
  }

  void ExpectUnreachable() const {
    ExpectMessage(MessageIcon::Critical, "File Tallowby - Folioweld",
                  "Merge of documents ABORTed\r(could not reach intput directory)");
  }
};

TEST_F(DirectoryMergeTest, FolderThatCannotBeEnteredIsACriticalMessage) {
  merge_.MergeDirectory(folder_.File("missing/"));
  ExpectUnreachable();
  EXPECT_FALSE(merge_.Report().OutputWritten);
  EXPECT_EQ(MergeLines(), Names{"  because of No such file or directory"});
  EXPECT_EQ(shell_.Notices, Names{"[Folioweld-MergeDirectory]=>  because of No such file or directory"});
  ExpectIdle();
}

TEST_F(DirectoryMergeTest, FolderThatCannotBeListedGivesTheSameMessage) {
  AddDocument("a");
  system_.Decide = FaultingSystem::Failing("FindFirstFile", EACCES);
  EXPECT_FALSE(Merge().OutputWritten);
  ExpectUnreachable();
  EXPECT_FALSE(Exists(Output()));
  ExpectIdle();
}

TEST_F(DirectoryMergeTest, ListingThatFailsMidwayNeverGivesAnOutputThatLacksDocuments) {
  for (const char* name : {"a", "b", "c"}) AddDocument(name);
  int calls = 0;
  system_.Decide = [&](const FaultingSystem::Call& call, std::size_t) {
    return FaultingSystem::Fault{call.Is("FindNextFile") && ++calls == 4 ? EIO : 0, 0};
  };
  EXPECT_FALSE(Merge().OutputWritten);
  ExpectUnreachable();
  EXPECT_FALSE(Exists(Output()));
  ExpectIdle();
}

TEST_F(DirectoryMergeTest, FolderWithoutADocumentIsAMessage) {
  folder_.MakeFolder("docs/folder");
  AddDocument("PAGEFILE.SYS");
  EXPECT_FALSE(Merge().OutputWritten);
  ExpectMessage(MessageIcon::Exclamation, "Folioweld", "NO INPUT FILE!  I DIDN'T DO ANYTHING");
  EXPECT_FALSE(Exists(Output()));
  ExpectIdle();
}

TEST_F(DirectoryMergeTest, RefusedFilesAreLoggedAndReported) {
  AddDocument("a");
  folder_.Write("docs/notes.txt", "text");
  folder_.Write("docs/half.pdf", "%PDF-1.5");
  const DirectoryMergeReport& report = Merge();
  EXPECT_TRUE(report.OutputWritten);
  EXPECT_FALSE(report.Complete());
  EXPECT_EQ(report.RefusedDocuments, Names{"half.pdf"});
  const Names lines = LogLines();
  for (const char* line : {"[Folioweld-MergeDirectory]=>File: \"notes.txt\"  is not acceptable for merging",
                           "[Folioweld-MergeDirectory]=>File: \"half.pdf\"  is not acceptable for merging"}) {
    EXPECT_EQ(std::count(lines.begin(), lines.end(), line), 1) << line;
  }
  ASSERT_EQ(shell_.Notices.size(), 2U);
  EXPECT_EQ(shell_.Notices[0],
            "[Folioweld-MergeDirectory]=>File: \"half.pdf\"  is not acceptable for merging");
  EXPECT_EQ(shell_.Notices[1].rfind("[Folioweld-MergeDirectory]=>  because of ", 0), 0U);
}

TEST_F(DirectoryMergeTest, FileThatIsNoDocumentDoesNotMakeTheOutputIncomplete) {
  AddDocument("a");
  folder_.Write("docs/notes.txt", "text");
  EXPECT_TRUE(Merge().Complete());
  EXPECT_TRUE(shell_.Notices.empty());
}

TEST_F(DirectoryMergeTest, OutputIsAskedForWhenItIsNotGiven) {
  AddDocument("a");
  program_.CommandLineOutput.clear();
  shell_.OutputAnswer = Output();
  EXPECT_TRUE(Merge().Complete());
  ASSERT_EQ(shell_.OutputQuestions.size(), 1U);
  EXPECT_EQ(shell_.OutputQuestions[0].Title, "Folioweld: Choose the OUTPUT FILE");
  EXPECT_EQ(shell_.OutputQuestions[0].DefaultExtension, "pdf");
  EXPECT_EQ(shell_.OutputQuestions[0].Filter, "PDF Files (*.pdf)|*.pdf|All Files (*.*)|*.*");
  EXPECT_EQ(PageTexts(Output()), Names{"a"});
}

TEST_F(DirectoryMergeTest, OutputThatIsGivenIsNotAskedFor) {
  AddDocument("a");
  EXPECT_TRUE(Merge().Complete());
  EXPECT_TRUE(shell_.OutputQuestions.empty());
}

TEST_F(DirectoryMergeTest, EmptyAnswerStopsInSilence) {
  AddDocument("a");
  program_.CommandLineOutput.clear();
  EXPECT_FALSE(Merge().OutputWritten);
  EXPECT_TRUE(shell_.Messages.empty());
  EXPECT_TRUE(MergeLines().empty());
  ExpectIdle();
}

TEST_F(DirectoryMergeTest, OutputThatCannotBeCreatedIsRefused) {
  AddDocument("a");
  ExpectRefusedOutput(folder_.File("missing/joined.pdf"));
  ExpectRefusedOutput(folder_.MakeFolder("folder"));
}

TEST_F(DirectoryMergeTest, OutputThatIsALinkIsRefused) {
  AddDocument("a");
  folder_.Write("target", "target");
  std::filesystem::create_symlink("target", folder_.File("link.pdf"));
  ExpectRefusedOutput(folder_.File("link.pdf"));
  EXPECT_EQ(ReadFile(folder_.File("target")), "target");
}

TEST_F(DirectoryMergeTest, OutputThatIsAnAcceptedFileIsRefusedBeforeAnythingIsWritten) {
  for (const char* name : {"a", "b", "c"}) AddDocument(name);
  const std::string before = ReadFile(Doc("b"));
  ExpectRefusedOutput(Doc("b"));
  ExpectRefusedOutput(folder_.File("docs/../docs/./b"));
  std::filesystem::create_hard_link(Doc("b"), folder_.File("hard.pdf"));
  ExpectRefusedOutput(folder_.File("hard.pdf"));
  EXPECT_EQ(ReadFile(Doc("b")), before);
  for (const auto& call : system_.Calls) {
    EXPECT_NE(call.Name, "WriteFile");
    EXPECT_NE(call.Name, "SetEndOfFile");
  }
}

TEST_F(DirectoryMergeTest, OutputThatALinkedInputLeadsToIsRefused) {
  folder_.Write("real.pdf", testing::SimpleDocument(1));
  std::filesystem::create_symlink(folder_.File("real.pdf"), Doc("link"));
  ExpectRefusedOutput(folder_.File("real.pdf"));
}

TEST_F(DirectoryMergeTest, OutputMayBeAFileOfTheFolderThatIsNoDocument) {
  AddDocument("a");
  folder_.Write("docs/old", "no document");
  program_.CommandLineOutput = Doc("old");
  EXPECT_TRUE(Merge().Complete());
  EXPECT_EQ(PageTexts(Doc("old")), Names{"a"});
}

TEST_F(DirectoryMergeTest, AnOldOutputInTheFolderIsNoLossWheneverItIsNamed) {
  AddDocument("a");
  for (const bool asked : {false, true}) {
    folder_.Write("docs/joined.pdf", "");
    program_.CommandLineOutput = asked ? "" : Doc("joined.pdf");
    shell_.OutputAnswer = Doc("joined.pdf");
    EXPECT_TRUE(Merge().Complete()) << asked;
    EXPECT_EQ(PageTexts(Doc("joined.pdf")), Names{"a"});
    std::filesystem::remove(Doc("joined.pdf"));
  }
}

TEST_F(DirectoryMergeTest, WhatCannotBeLookedAtIsLogged) {
  AddDocument("a");
  AddDocument("b.pdf");
  system_.Decide = [&](const FaultingSystem::Call& call, std::size_t) {
    return FaultingSystem::Fault{call.Is("GetFileAttributes") && call.Path == Doc("b.pdf") ? EIO : 0, 0};
  };
  EXPECT_FALSE(Merge().Complete());
  const std::string line = "File: \"b.pdf\"  cannot be looked at: Input/output error";
  EXPECT_EQ(MergeLines().front(), line);
  EXPECT_EQ(shell_.Notices, Names{"[Folioweld-MergeDirectory]=>" + line});
}

TEST_F(DirectoryMergeTest, LogsTheRequestBeforeTheNames) {
  AddDocument("a");
  EXPECT_TRUE(Merge().Complete());
  const Names lines = MergeLines();
  ASSERT_GE(lines.size(), 3U);
  EXPECT_EQ(lines[0], "Request to merge towards: \"" + Output() + "\"  the following files:");
  EXPECT_EQ(lines[1], "File name(0) = \"a\"");
  EXPECT_EQ(lines[2], "Sorted file name(0) = \"a\"");
}

TEST_F(DirectoryMergeTest, LogsNothingWhenTheLogIsOff) {
  for (const char* name : {"a", "b", "c"}) AddDocument(name);
  folder_.Write("docs/notes.txt", "text");
  program_.Merge.LogEnabled = false;
  EXPECT_TRUE(Merge().Complete());
  EXPECT_TRUE(LogLines().empty());
}

TEST_F(DirectoryMergeTest, ReadsTheSortOrderOnceWhenOrderingStarts) {
  for (const char* name : {"a", "b", "c"}) AddDocument(name);
  program_.SortOrder = -1;
  shell_.OnYield = [&] {
    const Names lines = MergeLines();
    if (!lines.empty() && lines.back().rfind("File name(", 0) == 0) program_.SortOrder = 1;
  };
  EXPECT_TRUE(Merge().Complete());
  EXPECT_EQ(PageTexts(Output()), (Names{"c", "b", "a"}));
}

TEST_F(DirectoryMergeTest, JoinsByDateWithTheTimesOfTheFolder) {
  for (const char* name : {"a", "b", "c"}) AddDocument(name);
  const struct timespec old[2] = {{1000000000, 0}, {1000000000, 0}};
  ASSERT_EQ(::utimensat(AT_FDCWD, Doc("c").c_str(), old, 0), 0);
  program_.SortOrder = 2;
  EXPECT_TRUE(Merge().Complete());
  EXPECT_EQ(PageTexts(Output())[0], "c");
}

TEST_F(DirectoryMergeTest, TwoFilesNeedNoFolderForTemporaryFiles) {
  AddDocument("a");
  AddDocument("b");
  ASSERT_EQ(settings_.WriteSetting("MergeTmpDir", folder_.File("vanished")), 0);
  EXPECT_TRUE(Merge().Complete());
  EXPECT_TRUE(shell_.FolderQuestions.empty());
  EXPECT_EQ(settings_.ReadSetting("MergeTmpDir"), "") << "the folder was looked at all the same";
}

TEST_F(DirectoryMergeTest, ThreeFilesAskForAFolderWhenTheStoredOneVanished) {
  for (const char* name : {"a", "b", "c"}) AddDocument(name);
  ASSERT_EQ(settings_.WriteSetting("MergeTmpDir", folder_.File("vanished")), 0);
  shell_.FolderAnswer = folder_.MakeFolder("picked");
  EXPECT_TRUE(Merge().Complete());
  EXPECT_EQ(shell_.FolderQuestions.size(), 1U);
  EXPECT_EQ(settings_.ReadSetting("MergeTmpDir"), folder_.File("picked/"));
}

TEST_F(DirectoryMergeTest, StopsWithoutAFolderForTemporaryFiles) {
  for (const char* name : {"a", "b", "c"}) AddDocument(name);
  // A relative one, and no current folder to take it from once the files are ordered.
  system_.Environment[1].second = "relative";
  bool ordered = false;
  shell_.OnYield = [&] {
    const Names lines = MergeLines();
    ordered = ordered || (!lines.empty() && lines.back().rfind("Sorted file name(1)", 0) == 0);
  };
  system_.Decide = [&](const FaultingSystem::Call& call, std::size_t) {
    return FaultingSystem::Fault{ordered && call.Is("GetCurrentDirectory") ? ENOENT : 0, 0};
  };
  EXPECT_FALSE(Merge().OutputWritten);
  EXPECT_EQ(
      shell_.Notices,
      (Names{"[Folioweld-MergeDirectory]=>Unable to get a temporary directory",
             "[Folioweld-MergeDirectory]=>  because of the system names no folder for temporary files"}));
  EXPECT_TRUE(shell_.Messages.empty());
  EXPECT_FALSE(Exists(Output())) << "the probe was not removed";
  ExpectIdle();
}

TEST_F(DirectoryMergeTest, StopsWhereTheSystemsFolderForTemporaryFilesCannotBeEntered) {
  for (const char* name : {"a", "b", "c"}) AddDocument(name);
  system_.Environment[1].second = folder_.Write("file", "");
  EXPECT_FALSE(Merge().OutputWritten);
  EXPECT_EQ(shell_.Notices, (Names{"[Folioweld-MergeDirectory]=>Unable to get a temporary directory",
                                   "[Folioweld-MergeDirectory]=>  because of Not a directory (\"" +
                                       folder_.File("file/") + "\")"}));
  EXPECT_FALSE(Exists(Output()));
  ExpectIdle();
}

TEST_F(DirectoryMergeTest, ReplacesAnExistingOutput) {
  AddDocument("a");
  folder_.Write("joined.pdf", std::string(100000, 'x'));
  EXPECT_TRUE(Merge().Complete());
  EXPECT_EQ(PageTexts(Output()), Names{"a"});
  EXPECT_LT(ReadFile(Output()).size(), 100000U);
}

TEST_F(DirectoryMergeTest, OutputGetsTheModeThatAnyNewFileGets) {
  AddDocument("a");
  const auto mask = ::umask(027);
  EXPECT_TRUE(Merge().Complete());
  ::umask(mask);
  struct stat status {};
  ASSERT_EQ(::stat(Output().c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 07777U, 0640U);
}

TEST_F(DirectoryMergeTest, OutputOfTenBytesGivesTheMessageAndElevenDoNot) {
  // The only document vanishes before it is opened, so that the output stays as it was.
  shell_.OnStatus = [&](int) { ::unlink(Doc("a").c_str()); };
  for (const int size : {10, 11}) {
    shell_.Messages.clear();
    AddDocument("a");
    folder_.Write("joined.pdf", std::string(static_cast<std::size_t>(size), 'x'));
    EXPECT_FALSE(Merge().OutputWritten);
    if (size == 10) {
      ExpectMessage(MessageIcon::Exclamation, "Folioweld", "Unable to Merge and Create " + Output());
    } else {
      EXPECT_TRUE(shell_.Messages.empty());
    }
    EXPECT_EQ(ReadFile(Output()).size(), static_cast<std::size_t>(size)) << "not the probe's: it stays";
  }
}

TEST_F(DirectoryMergeTest, LogEndsWithTheOutputAndWhatItHolds) {
  folder_.Write("docs/refused.pdf", "");
  const auto last = [&](const std::string& documents) {
    return "Output: \"" + Output() + "\"  holds " + documents + " in " +
           std::to_string(ReadFile(Output()).size()) + " bytes";
  };
  AddDocument("a");
  Merge();
  EXPECT_EQ(MergeLines().back(), last("1 document"));
  AddDocument("b");
  AddDocument("c");
  Merge();
  EXPECT_EQ(MergeLines().back(), last("3 documents"));
}

TEST_F(DirectoryMergeTest, LogNamesNoOutputWhereNoneWasWritten) {
  AddBrokenDocument("a");
  folder_.Write("joined.pdf", "an older output of some length");
  Merge();
  EXPECT_EQ(MergeLines().back(), "File: \"a\"  is missing in the output");
}

TEST_F(DirectoryMergeTest, ClearsTheNamesOnlyOnceAPairWasBegun) {
  program_.Merge.DocFileName(1) = "first";
  program_.Merge.DocFileName(2) = "second";
  program_.Merge.DocFileName(3) = "third";
  Merge();
  EXPECT_EQ(program_.Merge.DocFileName(1), "first");
  EXPECT_EQ(program_.Merge.DocFileName(2), "second");
  EXPECT_EQ(program_.Merge.DocFileName(3), "third");
  AddDocument("a");
  Merge();
  for (std::int32_t slot = 1; slot <= 3; ++slot) EXPECT_EQ(program_.Merge.DocFileName(slot), "");
}

TEST_F(DirectoryMergeTest, PlacesTheInputsAsFullPaths) {
  for (const char* name : {"a", "b", "c"}) AddDocument(name);
  shell_.OnStatus = [&](int) {
    EXPECT_EQ(program_.Merge.DocFileName(1)[0], '/');
    EXPECT_EQ((program_.Merge.DocFileName(2) + "/")[0], '/') << "full or empty";
  };
  EXPECT_TRUE(Merge().Complete());
}

TEST_F(DirectoryMergeTest, IsBusyFromItsStartToItsEnd) {
  for (const char* name : {"a", "b", "c"}) AddDocument(name);
  shell_.OnYield = [&] { EXPECT_TRUE(program_.ExternalBusy); };
  EXPECT_TRUE(Merge().Complete());
  EXPECT_GT(shell_.Yields, 0);
  ExpectIdle();
}

TEST_F(DirectoryMergeTest, TurnsTheViewerOffForTheRestOfTheRun) {
  AddDocument("a");
  program_.Merge.ShowOutputAfterMerge = true;
  EXPECT_TRUE(Merge().Complete());
  EXPECT_FALSE(program_.Merge.ShowOutputAfterMerge);
  EXPECT_TRUE(shell_.ShownOutputs.empty());
}

TEST_F(DirectoryMergeTest, KeepsTheViewerOnWhenItEndsBeforeTheCleanUp) {
  program_.Merge.ShowOutputAfterMerge = true;
  Merge();
  EXPECT_TRUE(program_.Merge.ShowOutputAfterMerge);
}

TEST_F(DirectoryMergeTest, LeavesTheInputsAsTheyAre) {
  for (const char* name : {"a", "b", "c", "d", "e"}) AddDocument(name);
  Names before;
  for (const char* name : {"a", "b", "c", "d", "e"}) before.push_back(ReadFile(Doc(name)));
  EXPECT_TRUE(Merge().Complete());
  Names after;
  for (const char* name : {"a", "b", "c", "d", "e"}) after.push_back(ReadFile(Doc(name)));
  EXPECT_EQ(before, after);
}

TEST_F(DirectoryMergeTest, SameDocumentsGiveTheSameBytes) {
  for (const char* name : {"a", "b", "c"}) AddDocument(name);
  EXPECT_TRUE(Merge().Complete());
  const std::string first = ReadFile(Output());
  EXPECT_TRUE(Merge().Complete());
  EXPECT_EQ(ReadFile(Output()), first);
}

TEST_F(DirectoryMergeTest, ReportIsThatOfTheLastRun) {
  AddDocument("a");
  folder_.Write("docs/half.pdf", "%PDF-1.5");
  EXPECT_FALSE(Merge().Complete());
  ::unlink(Doc("half.pdf").c_str());
  EXPECT_TRUE(Merge().Complete());
}

}  // namespace
}  // namespace folioweld
