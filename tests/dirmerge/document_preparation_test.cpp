// Documents that are prepared before they are joined, and what can go wrong with the program for that.

#include "dirmerge/document_preparation.h"

#include <cerrno>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <new>
#include <string>
#include <sys/stat.h>

#include "dirmerge/extra_programs.h"
#include "tests/dirmerge/preparing_fixture.h"
#include "tests/support/child_program.h"
#include "tests/support/merge_run.h"

namespace folioweld {
namespace {

namespace fs = std::filesystem;
using ::testing::Contains;
using ::testing::ElementsAre;
using testing::Exists;
using testing::FaultingSystem;
using testing::HasEnded;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using testing::Names;
using testing::PageTexts;
using testing::ReadFile;
using testing::SimpleDocument;
using testing::WaitUntil;

class DocumentPreparationTest : public testing::PreparingFixture {
 protected:
  /// Merges a, b and c, of which b cannot be prepared.
  void ExpectLeftOut(const std::string& why) {
    AddDocument("a.pdf");
    AddOther("b.pdf");
    AddDocument("c.pdf");
    const std::size_t handles = testing::OpenHandles();
    EXPECT_EQ(StatusOf(Merge()), kJoinedWithLosses);
    EXPECT_EQ(testing::OpenHandles(), handles);
    EXPECT_THAT(merge_.Report().RefusedDocuments, ElementsAre("b.pdf"));
    EXPECT_EQ(PageTexts(Output()), (Names{"a", "c"}));
    EXPECT_THAT(shell_.Notices, Contains("[Folioweld-MergeDirectory]=>File: \"b.pdf\"  is not acceptable for "
                                         "merging"));
    EXPECT_THAT(shell_.Notices, Contains(HasSubstr("it cannot be prepared: " + why)));
    EXPECT_THAT(Temporaries(), IsEmpty());
    ExpectIdle();
  }

  /// How often the program for preparing was started.
  [[nodiscard]] long Starts() const {
    return std::count_if(system_.Calls.begin(), system_.Calls.end(),
                         [](const auto& call) { return call.Name == "StartProcess"; });
  }
};

TEST_F(DocumentPreparationTest, ADocumentIsJoinedFromItsCopyInItsPlace) {
  AddDocument("a.pdf");
  AddOther("b.pdf");
  AddDocument("c.pdf");
  EXPECT_EQ(StatusOf(Merge()), kEverythingJoined);
  EXPECT_EQ(PageTexts(Output()), (Names{"a", "copy", "c"}));
  EXPECT_THAT(shell_.Notices,
              ElementsAre("[Folioweld-MergeDirectory]=>b.pdf: prepared (cross-reference stream)"));
  EXPECT_THAT(shell_.Preparings, ElementsAre("1/1: b.pdf"));
  EXPECT_THAT(shell_.Events, Contains("0|Preparing ... " + Doc("b.pdf")));
  EXPECT_THAT(MergeLines().back(), ::testing::StartsWith("Output: "));
  EXPECT_EQ(files_.Prepared().Find(Doc("b.pdf")), nullptr) << "the copy is gone, and so is the way to it";
  EXPECT_THAT(Temporaries(), IsEmpty());
  ExpectIdle();
}

TEST_F(DocumentPreparationTest, WithoutTheWishNothingIsPrepared) {
  program_.Prepare = false;
  AddDocument("a.pdf");
  AddOther("b.pdf");
  EXPECT_EQ(StatusOf(Merge()), kJoinedWithLosses);
  EXPECT_EQ(PageTexts(Output()), (Names{"a"}));
  EXPECT_EQ(Starts(), 0);
}

TEST_F(DocumentPreparationTest, WhereNothingNeedsItTheBytesAreThoseOfAnyRun) {
  for (const char* name : {"a.pdf", "b.pdf", "c.pdf", "d.pdf"}) AddDocument(name);
  EXPECT_EQ(StatusOf(Merge()), kEverythingJoined);
  const std::string prepared = ReadFile(Output());
  program_.Prepare = false;
  EXPECT_EQ(StatusOf(Merge()), kEverythingJoined);
  EXPECT_EQ(ReadFile(Output()), prepared);
  EXPECT_EQ(Starts(), 0);
}

TEST_F(DocumentPreparationTest, ADocumentThatWouldBringAWarningIsPreparedToo) {
  AddDocument("a.pdf");
  std::string document = SimpleDocument(1, "b");
  document.replace(document.find("/Count 1"), 8, "/Count 7");
  folder_.Write("docs/b.pdf", document);
  EXPECT_EQ(StatusOf(Merge()), kEverythingJoined);
  EXPECT_EQ(PageTexts(Output()), (Names{"a", "copy"}));
}

TEST_F(DocumentPreparationTest, ADocumentWhoseCopyBringsAWarningTooIsJoinedAsItIs) {
  AddDocument("a.pdf");
  std::string document = SimpleDocument(1, "b");
  document.replace(document.find("/Count 1"), 8, "/Count 7");
  folder_.Write("docs/b.pdf", document);
  folder_.Write("good-copy", document);
  EXPECT_EQ(StatusOf(Merge()), kJoinedWithLosses);
  EXPECT_EQ(PageTexts(Output()), (Names{"a", "b"}));
  EXPECT_THAT(shell_.Notices,
              Contains(HasSubstr("b.pdf: joined as it is, as its copy would not be better (")));
  EXPECT_THAT(merge_.Report().AlteredDocuments, ElementsAre("b.pdf"));
}

TEST_F(DocumentPreparationTest, WhatIsLostAndRepairedIsToldAndARepairIsNoSuccess) {
  AddDocument("a.pdf");
  AddOther("b.pdf");
  Script("echo 'lost: protection' >&2; echo 'repaired: the table was rebuilt' >&2; " + GoodScript("3"));
  EXPECT_EQ(StatusOf(Merge()), kJoinedWithLosses);
  EXPECT_EQ(PageTexts(Output()), (Names{"a", "copy"}));
  EXPECT_THAT(merge_.Report().RepairedDocuments, ElementsAre("b.pdf"));
  EXPECT_THAT(shell_.Notices,
              ElementsAre("[Folioweld-MergeDirectory]=>b.pdf: prepared (cross-reference stream)",
                          "[Folioweld-MergeDirectory]=>b.pdf: lost: protection",
                          "[Folioweld-MergeDirectory]=>b.pdf: repaired: the table was rebuilt"));
}

TEST_F(DocumentPreparationTest, ALossAloneIsASuccess) {
  AddOther("b.pdf");
  Script("echo 'lost: protection' >&2; " + GoodScript());
  EXPECT_EQ(StatusOf(Merge()), kEverythingJoined);
}

TEST_F(DocumentPreparationTest, ADocumentThatIsNamedTwiceIsPreparedOnceAndJoinedTwice) {
  AddOther("b.pdf");
  program_.CommandLineOutput = Output();
  merge_.MergeSources({{"b", Doc("b.pdf"), false}, {"b", Doc("b.pdf"), false}}, "");
  EXPECT_EQ(StatusOf(merge_.Report()), kEverythingJoined);
  EXPECT_EQ(PageTexts(Output()), (Names{"copy", "copy"}));
  EXPECT_EQ(Starts(), 1);
}

TEST_F(DocumentPreparationTest, AsManyRunSideBySideAsThereAreProcessors) {
  // Each waits for the other.
  Script(
      "test $(wc -c < $in) -gt 100 && own=one other=two || own=two other=one\n"
      "touch '" +
      folder_.Path() +
      "'/$own\n"
      "while ! test -e '" +
      folder_.Path() + "'/$other; do sleep 0.01; done\n" + GoodScript());
  AddOther("a.pdf");
  folder_.Write("docs/b.pdf", testing::kOtherDocument + std::string(100, '\n'));
  system_.Processors = 2;
  EXPECT_EQ(StatusOf(Merge()), kEverythingJoined);
  EXPECT_EQ(PageTexts(Output()), (Names{"copy", "copy"}));
}

TEST_F(DocumentPreparationTest, ItsOwnReasonIsTold) {
  Script("echo 'failed: a password is needed' >&2; exit 1");
  ExpectLeftOut("a password is needed (\"b.pdf\")");
}

TEST_F(DocumentPreparationTest, AProgramThatCrashesCostsItsDocumentOnly) {
  Script(GoodScript() + " & wait; kill -SEGV $$");
  ExpectLeftOut("the program that prepares was ended by signal 11");
}

TEST_F(DocumentPreparationTest, AProgramThatUsesUpItsProcessorTimeIsToldAsThat) {
  Script("kill -XCPU $$");
  ExpectLeftOut("it took more than 60 seconds of processor time");
}

TEST_F(DocumentPreparationTest, AProgramThatSaysNothingCostsItsDocumentOnly) {
  Script("exit 1");
  ExpectLeftOut("the program that prepares ended with status 1");
}

TEST_F(DocumentPreparationTest, AProgramThatCannotBeStartedCostsItsDocumentOnly) {
  system_.Decide = FaultingSystem::Failing("StartProcess", ENOMEM);
  ExpectLeftOut("the program that prepares cannot be started: Cannot allocate memory");
}

TEST_F(DocumentPreparationTest, AProgramThatIsLostCostsItsDocumentOnly) {
  system_.Decide = FaultingSystem::Failing("ExitOfProcess", ECHILD);
  ExpectLeftOut("the program that prepares was lost: No child processes");
}

TEST_F(DocumentPreparationTest, AProgramThatNeverEndsIsEnded) {
  const std::string id = folder_.File("id");
  Script("echo $$ > '" + id + "'; exec sleep 1000");
  shell_.OnYield = [&] {
    // There is a file before its line is in it.
    if (Exists(id) && ReadFile(id).ends_with("\n")) system_.MillisecondsAhead = 121'000;
  };
  ExpectLeftOut("it took more than 120 seconds");
  EXPECT_TRUE(WaitUntil([&] { return HasEnded(std::stoi(ReadFile(id))); }));
}

TEST_F(DocumentPreparationTest, ACopyThatIsNoDocumentIsNotJoined) {
  Script("echo '%PDF-1.4' > $out");
  ExpectLeftOut("its copy cannot be joined either: ");
}

TEST_F(DocumentPreparationTest, ACopyThatIsEmptyIsNotJoined) {
  Script("exit 0");
  ExpectLeftOut("its copy cannot be joined either: file offset 0: the file is empty");
}

TEST_F(DocumentPreparationTest, ACopyThatIsCutIsNotJoined) {
  Script("head -c 300 '" + copy_ + "' > $out");
  ExpectLeftOut("its copy cannot be joined either: ");
}

TEST_F(DocumentPreparationTest, ACopyThatIsTooLongIsNotJoined) {
  Script("truncate -s 100M $out");
  ExpectLeftOut("its copy is too long");
}

TEST_F(DocumentPreparationTest, ACopyThatOthersMayReadIsNotJoined) {
  Script("chmod 644 $out; " + GoodScript());
  ExpectLeftOut("another file has taken the place of its copy");
}

TEST_F(DocumentPreparationTest, ADocumentThatChangesMeanwhileIsLeftOut) {
  Script("echo more >> '" + Doc("b.pdf") + "'; " + GoodScript());
  ExpectLeftOut("it was changed, or its name, links or permissions were, while it was being prepared");
}

TEST_F(DocumentPreparationTest, WhatTheProgramSaysTooMuchIsDropped) {
  Script("head -c 1000000 /dev/zero >&2; " + GoodScript());
  AddOther("b.pdf");
  EXPECT_EQ(StatusOf(Merge()), kEverythingJoined);
}

TEST_F(DocumentPreparationTest, WithoutAFolderForTemporariesThoseThatNeedOneAreLeftOut) {
  ASSERT_EQ(::chmod(Tmp().c_str(), 0777), 0);
  AddDocument("a.pdf");
  AddOther("b.pdf");
  EXPECT_EQ(StatusOf(Merge()), kJoinedWithLosses);
  EXPECT_EQ(PageTexts(Output()), (Names{"a"}));
  EXPECT_THAT(shell_.Notices, Contains(HasSubstr("there is no folder for temporary files, because of ")));
  EXPECT_EQ(Starts(), 0);
}

TEST_F(DocumentPreparationTest, WhereNothingIsLeftThereIsNoInput) {
  AddOther("a.pdf");
  Script("exit 1");
  EXPECT_EQ(StatusOf(Merge()), kNoOutput);
  EXPECT_THAT(MessageTexts(), ElementsAre("NO INPUT FILE!  I DIDN'T DO ANYTHING"));
  EXPECT_FALSE(Exists(Output()));
}

TEST_F(DocumentPreparationTest, ACancelEndsEveryProgramAndLeavesNothing) {
  AddOther("a.pdf");
  AddOther("b.pdf");
  system_.Processors = 2;
  Script("echo $$ > '" + folder_.Path() + "'/id${both#*,}; exec sleep 1000");
  const auto ids = [&] {
    std::vector<int> found;
    for (const auto& entry : fs::directory_iterator(folder_.Path())) {
      if (!entry.path().filename().string().starts_with("id")) continue;
      const std::string text = ReadFile(entry.path().string());
      if (text.ends_with("\n")) found.push_back(std::stoi(text));
    }
    return found;
  };
  std::vector<int> running;
  shell_.OnYield = [&] {
    if (running.size() == 2) return;
    running = ids();
    if (running.size() == 2) program_.Merge.AbortRequested = true;
  };
  Merge();
  EXPECT_TRUE(merge_.Report().Cancelled);
  EXPECT_FALSE(Exists(Output()));
  ASSERT_EQ(running.size(), 2U);
  for (const int id : running) EXPECT_TRUE(WaitUntil([id] { return HasEnded(id); })) << id;
  EXPECT_THAT(Temporaries(), IsEmpty());
  ExpectIdle();
}

TEST_F(DocumentPreparationTest, MemoryThatRunsOutAtAnyMomentLeavesNothingBehind) {
  AddDocument("a.pdf");
  AddOther("b.pdf");
  AddOther("c.pdf");
  EXPECT_TRUE(Merge().Complete());
  const long all = shell_.Yields;
  const std::size_t handles = testing::OpenHandles();
  for (long n = 1; n <= all && !HasFailure(); n += all / 60) {
    shell_.Yields = 0;
    fs::remove(Output());
    shell_.OnYield = [&] {
      if (shell_.Yields == n) throw std::bad_alloc();
    };
    const bool written = Merge().OutputWritten;
    EXPECT_EQ(written, Exists(Output())) << n;
    EXPECT_EQ(testing::OpenHandles(), handles) << n;
    EXPECT_THAT(Temporaries(), IsEmpty()) << n;
    ExpectIdle();
  }
}

std::string WithObjects(int count) {
  testing::DocumentBuilder builder;
  builder.Object(1, "<</Type/Catalog/Pages 2 0 R>>").Object(2, "<</Type/Pages/Kids[]/Count 0>>");
  for (int number = 3; number <= count; ++number) builder.Object(number, "[0]");
  return builder.Build();
}

TEST_F(DocumentPreparationTest, TooManyObjectsAreKnownBeforeAnythingIsWritten) {
  folder_.Write("docs/a.pdf", WithObjects(9000));
  folder_.Write("docs/b.pdf", WithObjects(7384));
  folder_.Write("docs/c.pdf", WithObjects(10));
  EXPECT_EQ(StatusOf(Merge()), kNoOutput);
  EXPECT_THAT(
      MessageTexts(),
      ElementsAre("the output would hold 16396 objects, and at most 16384 can be written: make 2 outputs, of "
                  "document 1 (\"a.pdf\", 9000 objects), documents 2 to 3 (\"c.pdf\", 7395 objects)"));
  EXPECT_FALSE(Exists(Output()));
  EXPECT_THAT(shell_.Merges, IsEmpty());
}

TEST_F(DocumentPreparationTest, AsManyObjectsAsCanBeWrittenAreJoined) {
  folder_.Write("docs/a.pdf", WithObjects(9000));
  folder_.Write("docs/b.pdf", WithObjects(7383));
  EXPECT_EQ(StatusOf(Merge()), kEverythingJoined);
}

TEST_F(DocumentPreparationTest, TheProgramIsFoundBesideThisOneAndNowhereElse) {
  EXPECT_EQ(FindExtraProgram(system_, kPrepareProgram), folder_.File("bin/folioweld-prepare"));
  fs::remove(folder_.File("bin/folioweld-prepare"));
  EXPECT_EQ(FindExtraProgram(system_, kPrepareProgram), "");
}

}  // namespace
}  // namespace folioweld
