// What is carried over into a finished output, and what can go wrong with the program for that.

#include "dirmerge/carrying.h"

#include <cerrno>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <new>
#include <string>

#include "engine/joined_documents.h"
#include "engine/own_files.h"
#include "tests/dirmerge/directory_merge_fixture.h"
#include "tests/support/carrying_script.h"
#include "tests/support/child_program.h"
#include "tests/support/document_builder.h"
#include "tests/support/merge_run.h"

namespace folioweld {
namespace {

namespace fs = std::filesystem;
using ::testing::Contains;
using ::testing::ElementsAre;
using testing::Exists;
using testing::FaultingSystem;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using testing::ReadFile;

constexpr char kWithout[] = "The output is the joined file without what --carry adds: ";

class CarryingTest : public testing::DirectoryMergeFixture {
 protected:
  CarryingTest() {
    folder_.MakeFolder("bin");
    system_.ModulePath = folder_.File("bin/folioweld");
    program_.Carry.Wanted = true;
    for (const char* name : {"a.pdf", "b.pdf", "c.pdf"}) AddDocument(name);
    Script(testing::AppendingCommands());
  }

  void Script(const std::string& commands) const {
    testing::WriteCarryingScript(folder_, "bin/folioweld-carry", commands);
  }

  /// The output without the option.
  std::string Plain() {
    program_.Carry.Wanted = false;
    EXPECT_TRUE(Merge().OutputWritten);
    program_.Carry.Wanted = true;
    shell_.Notices.clear();
    const std::string bytes = ReadFile(Output());
    fs::remove(Output());
    return bytes;
  }

  void ExpectCarried() {
    const std::string plain = Plain();
    EXPECT_EQ(StatusOf(Merge()), kEverythingJoined) << ::testing::PrintToString(shell_.Notices);
    EXPECT_TRUE(ReadFile(Output()) == testing::WithAppended(plain));
    EXPECT_THAT(shell_.Notices, IsEmpty());
    ExpectIdle();
  }

  /// Merges, and finds the output as it is without the option.
  void ExpectCutBack(const std::string& why) {
    const std::string plain = Plain();
    const std::size_t handles = testing::OpenHandles();
    EXPECT_EQ(StatusOf(Merge()), kJoinedWithLosses);
    EXPECT_EQ(testing::OpenHandles(), handles);
    EXPECT_TRUE(ReadFile(Output()) == plain);
    EXPECT_TRUE(merge_.Report().CarryingFailed);
    EXPECT_THAT(shell_.Notices, Contains(HasSubstr(kWithout + why)));
    ExpectIdle();
  }

  /// Merges, and finds no output.
  void ExpectNoOutput(const std::string& why) {
    EXPECT_EQ(StatusOf(Merge()), kNoOutput);
    EXPECT_THAT(shell_.Notices,
                Contains("[Folioweld-cmdOK]=>The merge failed: \"" + Output() + "\": " + why));
    ExpectIdle();
  }

  /// The id of the process that was started and not yet taken leave of.
  static int OnlyChild() {
    int child = 0;
    std::ifstream("/proc/thread-self/children") >> child;
    EXPECT_GT(child, 0);
    return child;
  }

  /// As a later document it is warned of, since its catalog hides a layer.
  void AddLayers(const std::string& name) const {
    folder_.Write(
        "docs/" + name,
        testing::DocumentBuilder()
            .Object(1, "<</Type/Catalog/Pages 2 0 R/OCProperties<</OCGs[3 0 R]/D<</OFF[3 0 R]>>>>>>")
            .Object(2, "<</Type/Pages/Kids[]/Count 0>>")
            .Object(3, "<</Type/OCG/Name(x)>>")
            .Build());
  }
};

TEST_F(CarryingTest, TheOutputIsTheJoinedFileAndWhatIsAppended) {
  ExpectCarried();
  EXPECT_THAT(shell_.Carryings, ElementsAre("joined.pdf"));
  EXPECT_THAT(MergeLines().back(), HasSubstr(" in " + std::to_string(fs::file_size(Output())) + " bytes"));
}

TEST_F(CarryingTest, OneDocumentAloneIsCarriedOverToo) {
  fs::remove(Doc("b.pdf"));
  fs::remove(Doc("c.pdf"));
  ExpectCarried();
}

TEST_F(CarryingTest, TheProgramIsToldOfEveryDocument) {
  AddDocument("d.pdf");
  Script("cat $list > '" + folder_.File("list") + "'; " + testing::AppendingCommands());
  EXPECT_EQ(StatusOf(Merge()), kEverythingJoined);
  const auto documents = ReadJoinedDocuments(ReadFile(folder_.File("list")));
  ASSERT_TRUE(documents);
  ASSERT_EQ(documents->size(), 4U);
  std::int32_t firstObject = 0;
  for (const JoinedDocument& document : *documents) {
    const std::string path = Doc(document.Name);
    EXPECT_EQ(document.Path, path);
    EXPECT_TRUE(IsSameState(document.Known, system_.GetFileAttributes(path).Value()));
    EXPECT_EQ(document.FirstObject, firstObject);
    // Objects 0 to 6.
    firstObject += 7;
  }
}

TEST_F(CarryingTest, ADocumentThatWasPreparedIsReadFromItsCopy) {
  program_.Prepare = true;
  folder_.Write("docs/b.pdf", testing::kOtherDocument);
  const std::string copy = folder_.Write("good-copy", testing::SimpleDocument(1, "copy"));
  testing::WritePreparingScript(folder_, "bin/folioweld-prepare", testing::CopyingCommands(copy));
  Script("cat $list > '" + folder_.File("list") + "'; cp '" + Tmp() + "'*.tmp '" + folder_.File("seen") +
         "'; " + testing::AppendingCommands());
  fs::remove(Doc("c.pdf"));
  EXPECT_EQ(StatusOf(Merge()), kEverythingJoined);
  const auto documents = ReadJoinedDocuments(ReadFile(folder_.File("list")));
  ASSERT_TRUE(documents && documents->size() == 2);
  EXPECT_EQ((*documents)[1].Name, "b.pdf");
  EXPECT_EQ(fs::path((*documents)[1].Path).parent_path(), fs::path(Tmp()).parent_path());
  EXPECT_EQ(ReadFile(folder_.File("seen")), ReadFile(copy));
}

TEST_F(CarryingTest, TheProgramGetsLimitsAndChoices) {
  program_.Carry.Bookmarks = "own";
  program_.Carry.Title = "A 'title'";
  Script("shift; printf '%s\\n' \"$@\" > '" + folder_.File("words") + "'; " + testing::AppendingCommands());
  EXPECT_EQ(StatusOf(Merge()), kEverythingJoined);
  EXPECT_EQ(ReadFile(folder_.File("words")),
            "--limits=1073741824,60,2147483647\n--bookmarks=own\n--title=A 'title'\n");
}

TEST_F(CarryingTest, WhatIsLostOfADocumentIsToldAndNoSuccess) {
  const std::string plain = Plain();
  Script("echo 'lost: 2: outline: its items lead in a circle' >&2; echo 'did: all else' >&2; " +
         testing::AppendingCommands("3"));
  EXPECT_EQ(StatusOf(Merge()), kJoinedWithLosses);
  EXPECT_TRUE(ReadFile(Output()) == testing::WithAppended(plain));
  EXPECT_THAT(merge_.Report().AlteredDocuments, ElementsAre("b.pdf"));
  EXPECT_FALSE(merge_.Report().CarryingFailed);
  EXPECT_THAT(shell_.Notices,
              ElementsAre("[Folioweld-cmdOK]=>\"" + Doc("b.pdf") +
                          "\": not wholly carried over (outline: its items lead in a circle)"));
  EXPECT_THAT(LogLines(), Contains("[Folioweld-Carrying]=>all else"));
}

TEST_F(CarryingTest, WhatIsCarriedOverIsNoWarning) {
  AddLayers("b.pdf");
  ExpectCarried();
  program_.Carry.Wanted = false;
  EXPECT_EQ(StatusOf(Merge()), kJoinedWithLosses);
}

TEST_F(CarryingTest, TheWarningOfAPartThatIsLostComesWithTheLoss) {
  AddLayers("b.pdf");
  AddLayers("c.pdf");
  Script("echo 'lost: 3: layers: too many' >&2; " + testing::AppendingCommands("3"));
  EXPECT_EQ(StatusOf(Merge()), kJoinedWithLosses);
  EXPECT_THAT(merge_.Report().AlteredDocuments, ElementsAre("c.pdf"));
  EXPECT_THAT(shell_.Notices, ElementsAre(HasSubstr("layers that its catalog hides are shown"),
                                          HasSubstr("not wholly carried over (layers: too many)")));
}

TEST_F(CarryingTest, EveryWarningOfADocumentComesWhoseCatalogIsLost) {
  AddLayers("b.pdf");
  AddLayers("c.pdf");
  Script("echo 'lost: 2: catalog: it was changed' >&2; " + testing::AppendingCommands("3"));
  EXPECT_EQ(StatusOf(Merge()), kJoinedWithLosses);
  EXPECT_THAT(shell_.Notices,
              ElementsAre(HasSubstr("b.pdf\", object"), HasSubstr("(catalog: it was changed)")));
}

TEST_F(CarryingTest, WhereNothingIsCarriedOverEveryWarningComes) {
  AddLayers("b.pdf");
  AddLayers("c.pdf");
  Script("echo 'failed: no reason' >&2; exit 1");
  ExpectCutBack("no reason");
  EXPECT_THAT(merge_.Report().AlteredDocuments, ElementsAre("b.pdf", "c.pdf"));
  EXPECT_EQ(shell_.Notices.size(), 3U);
}

TEST_F(CarryingTest, AProgramThatFailsAfterItsAppendIsCutBack) {
  Script("echo 'failed: it does not read back' >&2; " + testing::AppendingCommands("1"));
  ExpectCutBack("it does not read back");
}

TEST_F(CarryingTest, AProgramThatCrashesIsCutBack) {
  Script("echo half >> $joined; kill -SEGV $$");
  ExpectCutBack("the program that carries over was ended by signal 11");
}

TEST_F(CarryingTest, AProgramThatSaysNothingIsCutBack) {
  Script(testing::AppendingCommands("3"));
  ExpectCutBack("the program that carries over ended with status 3");
}

TEST_F(CarryingTest, AProgramThatSpeaksOfNoDocumentIsCutBack) {
  for (const char* loss : {"0: form: x", "4: form: x", "form: x", "2 form: x", "-1: form: x"}) {
    Script("echo 'lost: " + std::string(loss) + "' >&2; " + testing::AppendingCommands("3"));
    ExpectCutBack("it speaks of no document: " + std::string(loss));
  }
}

TEST_F(CarryingTest, AProgramThatTellsWithoutAnEndIsCutBack) {
  Script("head -c 2000000 /dev/zero >&2; " + testing::AppendingCommands());
  ExpectCutBack("it tells of more losses than can be kept");
}

TEST_F(CarryingTest, AProgramThatLiesIsCutBack) {
  Script("echo half >> $joined; exit 0");
  ExpectCutBack("what was appended to the output does not end with a cross-reference table");
}

TEST_F(CarryingTest, AProgramThatNeverEndsIsEndedAndCutBack) {
  const std::string id = folder_.File("id");
  Script("echo half >> $joined; echo $$ > '" + id + "'; exec sleep 1000");
  shell_.OnYield = [&] {
    // There is a file before its line is in it.
    if (Exists(id) && ReadFile(id).ends_with("\n")) system_.MillisecondsAhead = 121'000;
  };
  ExpectCutBack("it took more than 120 seconds");
  EXPECT_TRUE(::kill(std::stoi(ReadFile(id)), 0) < 0 && errno == ESRCH);
}

TEST_F(CarryingTest, AProgramThatCannotBeStartedLeavesTheJoinedFile) {
  system_.Decide = FaultingSystem::Failing("StartProcess", ENOMEM);
  ExpectCutBack("the program that carries over cannot be started: Cannot allocate memory");
}

TEST_F(CarryingTest, AProgramThatIsLostIsEndedBeforeTheCut) {
  Script("while echo more >> $joined; do :; done");
  system_.Decide = [&](const FaultingSystem::Call& call, std::size_t) {
    const bool cut = call.Is("SetEndOfFile") && !shell_.Carryings.empty();
    // One that was ended may be about to write once more; a lost one would have been gone.
    if (cut) {
      EXPECT_TRUE(testing::WaitUntil([] { return testing::HasEnded(OnlyChild()); }));
    }
    return FaultingSystem::Fault{call.Is("ExitOfProcess") ? ECHILD : 0, 0};
  };
  ExpectCutBack("the program that carries over was lost: No child processes");
}

TEST_F(CarryingTest, WithoutAFileInMemoryTheJoinedFileStays) {
  system_.Decide = FaultingSystem::Failing("CreateMemoryFile", EMFILE);
  ExpectCutBack("the list of the documents cannot be written: Too many open files");
}

TEST_F(CarryingTest, ACancelEndsTheProgramAndLeavesTheJoinedFile) {
  const std::string id = folder_.File("id");
  Script("echo half >> $joined; echo $$ > '" + id + "'; exec sleep 1000");
  bool cancelled = false;
  shell_.OnYield = [&] {
    if (!Exists(id) || !ReadFile(id).ends_with("\n") || std::exchange(cancelled, true)) return;
    program_.Merge.AbortRequested = true;
  };
  ExpectCutBack("cancelled");
  EXPECT_TRUE(merge_.Report().Cancelled);
  EXPECT_TRUE(::kill(std::stoi(ReadFile(id)), 0) < 0 && errno == ESRCH);
}

constexpr char kElsewhere[] = "the output was changed, moved, removed or replaced by another program";

TEST_F(CarryingTest, AnOutputThatIsRemovedMeanwhileIsNoOutput) {
  Script("rm '" + Output() + "'; " + testing::AppendingCommands());
  ExpectNoOutput(kElsewhere);
  EXPECT_FALSE(Exists(Output()));
}

TEST_F(CarryingTest, AFileThatTakesTheOutputsPlaceIsLeftAlone) {
  for (const char* status : {"0", "1"}) {
    Script("rm '" + Output() + "'; echo other > '" + Output() + "'; " + testing::AppendingCommands(status));
    Merge();
    EXPECT_EQ(ReadFile(Output()), "other\n");
    EXPECT_EQ(StatusOf(merge_.Report()), kNoOutput);
  }
}

TEST_F(CarryingTest, AnOutputThatWasChangedBeforeIsNotTouched) {
  const std::string plain = Plain();
  shell_.OnYield = [&] {
    if (shell_.Carryings.size() == 1 && fs::file_size(Output()) == plain.size()) {
      fs::resize_file(Output(), plain.size() + 9);
    }
  };
  ExpectNoOutput(kElsewhere);
  EXPECT_EQ(fs::file_size(Output()), plain.size() + 9);
}

TEST_F(CarryingTest, AnOutputThatIsCutShortIsRemoved) {
  Script("truncate -s 300 $joined; exit 0");
  ExpectNoOutput("the output could not be cut back to the joined file: Input/output error");
  EXPECT_FALSE(Exists(Output()));
}

TEST_F(CarryingTest, AnOutputThatCannotBeCutBackIsRemoved) {
  Script("echo half >> $joined; exit 1");
  system_.Decide = [&](const FaultingSystem::Call& call, std::size_t) {
    const bool cut = call.Is("SetEndOfFile") && !shell_.Carryings.empty();
    return FaultingSystem::Fault{cut ? EIO : 0, 0};
  };
  ExpectNoOutput("the output could not be cut back to the joined file: Input/output error");
  EXPECT_FALSE(Exists(Output()));
}

TEST_F(CarryingTest, AnOutputThatCannotBeClosedIsCutBack) {
  bool failed = false;
  system_.Decide = [&](const FaultingSystem::Call& call, std::size_t index) {
    if (failed || !call.Is("CloseHandle") || system_.Calls[index - 1].Name != "GetLinkAttributes")
      return FaultingSystem::Fault{};
    failed = !shell_.Carryings.empty();
    return FaultingSystem::Fault{failed ? ENOSPC : 0, 0};
  };
  ExpectCutBack("the output cannot be finished: No space left on device");
}

TEST_F(CarryingTest, MemoryThatRunsOutAtAnyMomentLeavesAWholeOutputOrNone) {
  const std::string plain = Plain();
  const std::string whole = testing::WithAppended(plain);
  shell_.Yields = 0;
  EXPECT_TRUE(Merge().Complete());
  const long all = shell_.Yields;
  for (long n = all - 40; n <= all && !HasFailure(); ++n) {
    shell_.Yields = 0;
    fs::remove(Output());
    shell_.OnYield = [&] {
      if (shell_.Yields == n) throw std::bad_alloc();
    };
    const bool written = Merge().OutputWritten;
    ASSERT_EQ(written, Exists(Output())) << n;
    if (written) {
      const std::string bytes = ReadFile(Output());
      EXPECT_TRUE(bytes == (merge_.Report().Complete() ? whole : plain)) << n;
    }
    ExpectIdle();
  }
}

}  // namespace
}  // namespace folioweld
