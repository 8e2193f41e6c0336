// A cancel in every pass of the job.

#include <gtest/gtest.h>

#include "tests/support/document_builder.h"
#include "tests/support/merge_run.h"
#include "tests/support/status_texts.h"

namespace folioweld::testing {
namespace {

using Events = std::vector<std::string>;

const std::string kFirstPass = "\r\nPass #1 (getting general document structure):    \r\n";
const std::string kSecondPass = "\r\nPass #2 (getting description of the objects):\r\n+";
const std::string kBuild1 = "Pass #1 of building output file: get missing lengths and relocate objects";
const std::string kBuild2 =
    "   -> OK : the missing length of 0  object has been found\r\n"
    "Pass #2 for output file: compute new object numbers";
const std::string kBuild3 = "Pass #3 of building output file: paste catalogs of pages together";
const std::string kBuild4 = "Pass #4 of building output file: Write the output file";

bool EndsWith(const std::string& text, const std::string& end) {
  return text.size() >= end.size() && text.substr(text.size() - end.size()) == end;
}

class MergeJobCancelTest : public ::testing::Test {
 protected:
  MergeJobCancelTest() { run_.Folder.Write("out.pdf", "old"); }

  /// Cancels as the button does, as soon as the status line ends with the text.
  void CancelAt(int line, const std::string& end) {
    run_.Shell.OnStatus = [this, line, end](int changed) {
      if (changed == line && EndsWith(run_.Status(line), end)) run_.Job.AbortOperation();
    };
  }

  void RunAndFail() {
    const std::size_t handles = OpenHandles();
    run_.State.ShowOutputAfterMerge = true;
    run_.Run();
    EXPECT_EQ(OpenHandles(), handles);
    EXPECT_TRUE(run_.Failed());
    EXPECT_EQ(run_.State.DocFileName(3), "");
    EXPECT_EQ(run_.State.DocFileName(1), run_.FirstPath);
    EXPECT_EQ(run_.State.DocFileName(2), run_.SecondPath);
    EXPECT_FALSE(run_.State.AbortRequested);
    EXPECT_TRUE(run_.State.CancelSeen) << "handed on to whoever started the job";
    EXPECT_FALSE(run_.State.JobRunning);
    EXPECT_TRUE(run_.Shell.Messages.empty());
    EXPECT_TRUE(run_.Shell.ShownOutputs.empty());
    EXPECT_EQ(run_.Shell.Calls, (Events{"DisableInputPicking", "RefreshControls", "EnterRunningState",
                                        "LeaveRunningState", "RefreshControls"}));
    ASSERT_EQ(run_.LogLines().size(), 1U);
    EXPECT_TRUE(EndsWith(run_.LogLines()[0], "cancelled")) << run_.LogLines()[0];
  }

  void ExpectOutputUntouched() { EXPECT_EQ(run_.Output(), "old"); }
  void ExpectOutputDeleted() { EXPECT_EQ(run_.Folder.Names(), (Events{"a.pdf", "b.pdf"})); }

  MergeRun run_{SimpleDocument(1), SimpleDocument(2)};
};

TEST_F(MergeJobCancelTest, InTheFirstPassOfTheFirstInput) {
  CancelAt(0, "+");
  RunAndFail();
  EXPECT_EQ(run_.Status(0), "Parsing file #1: " + run_.FirstPath + kFirstPass + "+" + kFailed);
  EXPECT_EQ(run_.Status(1), "");
  EXPECT_EQ(run_.Status(2), "");
  ExpectOutputUntouched();
}

TEST_F(MergeJobCancelTest, InTheSecondPassOfTheFirstInput) {
  CancelAt(0, " 0% (0)");
  RunAndFail();
  EXPECT_EQ(run_.Status(0), "Parsing file #1: " + run_.FirstPath + kFirstPass + "+0-6   -> OK" + kSecondPass +
                                " 0% (0)" + kFailed);
  EXPECT_EQ(run_.Status(1), "");
  EXPECT_EQ(run_.Status(2), "");
  ExpectOutputUntouched();
}

TEST_F(MergeJobCancelTest, InTheSecondPassOfTheFirstInputNoOutputIsMade) {
  run_.State.DocFileName(3) = run_.OutputPath = run_.Folder.File("new.pdf");
  CancelAt(0, " 0% (0)");
  RunAndFail();
  EXPECT_FALSE(Exists(run_.OutputPath));
}

TEST_F(MergeJobCancelTest, InTheFirstPassOfTheSecondInput) {
  CancelAt(1, "+");
  RunAndFail();
  EXPECT_TRUE(EndsWith(run_.Status(0), "   -> OK"));
  EXPECT_EQ(run_.Status(1), "Parsing file #2: " + run_.SecondPath + kFirstPass + "+" + kFailed);
  EXPECT_EQ(run_.Status(2), "");
  ExpectOutputUntouched();
}

TEST_F(MergeJobCancelTest, InTheSecondPassOfTheSecondInput) {
  CancelAt(1, " 0% (7)");
  RunAndFail();
  EXPECT_TRUE(EndsWith(run_.Status(1), kSecondPass + " 0% (7)" + kFailed));
  EXPECT_EQ(run_.Status(2), "");
  ExpectOutputUntouched();
}

TEST_F(MergeJobCancelTest, InTheFirstPassOfTheOutput) {
  CancelAt(2, "relocate objects");
  RunAndFail();
  EXPECT_EQ(run_.Status(2),
            "Pass #1 of building output file: get missing lengths and relocate objects" + kFailed + "\r\n");
  ExpectOutputUntouched();
}

TEST_F(MergeJobCancelTest, InTheSecondPassOfTheOutput) {
  CancelAt(2, "compute new object numbers");
  RunAndFail();
  EXPECT_EQ(run_.Status(2), kBuild1 + kBuild2 + kFailed + "\r\n");
  ExpectOutputUntouched();
}

TEST_F(MergeJobCancelTest, InTheThirdPassOfTheOutput) {
  CancelAt(2, "paste catalogs of pages together");
  RunAndFail();
  EXPECT_EQ(run_.Status(2), kBuild1 + kBuild2 + "   -> OK\r\n" + kBuild3 + kFailed + "\r\n");
  ExpectOutputUntouched();
}

TEST_F(MergeJobCancelTest, InTheFourthPassOfTheOutput) {
  CancelAt(2, "Write the output file");
  RunAndFail();
  EXPECT_EQ(run_.Status(2),
            kBuild1 + kBuild2 + "   -> OK\r\n" + kBuild3 + "   -> OK\r\n" + kBuild4 + kFailed + "\r\n");
  ExpectOutputDeleted();
}

TEST_F(MergeJobCancelTest, WhileALongStreamIsCopied) {
  run_.SecondPath = run_.Folder.Write("b.pdf", DocumentBuilder()
                                                   .Object(1, "<</Pages 2 0 R>>")
                                                   .Object(2, "<</Count 0>>")
                                                   .Stream(3, "", std::string(20 * 1024 * 1024, 'x'))
                                                   .Build());
  long writesBefore = 0;
  run_.Shell.OnYield = [&] {
    long writes = 0;
    for (const auto& call : run_.System.Calls) writes += call.Name == "WriteFile" ? 1 : 0;
    if (writes > 0 && writesBefore == 0) run_.Job.AbortOperation();
    writesBefore = writes;
  };
  RunAndFail();
  ExpectOutputDeleted();
}

TEST_F(MergeJobCancelTest, AfterTheLastPassComesTooLateAndIsHandedOn) {
  CancelAt(2, kBuild4 + "   -> OK\r\n");
  run_.Run();
  EXPECT_EQ(run_.State.MergeStatus, 2);
  EXPECT_TRUE(run_.State.CancelSeen);
  EXPECT_FALSE(run_.State.AbortRequested);
  EXPECT_NE(run_.Output(), "old");
}

TEST(MergeJobCancelSweepTest, AtAnyYieldEndsTheJobAndLeavesNothingBehind) {
  const std::string indirect = DocumentBuilder()
                                   .Object(1, "<</Type/Catalog/Pages 2 0 R/Sub<</A 1>>>>")
                                   .Object(2, "<</Type/Pages/Kids[]/Count 4 0 R>>")
                                   .Stream(3, "", "data", "5 0 R")
                                   .Object(4, "0")
                                   .Object(5, "4")
                                   .EndRevision()
                                   .Object(3, "<</New 1>>")
                                   .Build();
  int cancelled = 0;
  for (long yield = 1;; ++yield) {
    MergeRun run(indirect, SimpleDocument(1));
    run.Folder.Write("out.pdf", "old");
    run.Shell.OnYield = [&] {
      if (run.Shell.Yields == yield) run.State.AbortRequested = true;
    };
    run.Run();
    ASSERT_FALSE(run.State.JobRunning);
    ASSERT_FALSE(run.State.AbortRequested);
    if (!run.State.CancelSeen) {
      EXPECT_EQ(run.State.MergeStatus, 2);
      break;
    }
    ++cancelled;
    ASSERT_TRUE(run.Failed()) << "yield " << yield << ": " << run.Status(2);
    ASSERT_EQ(run.LogLines().size(), 1U) << yield;
    ASSERT_TRUE(EndsWith(run.LogLines()[0], "cancelled")) << yield << ": " << run.LogLines()[0];
    const bool written = run.Status(2).find("Pass #4") != std::string::npos;
    ASSERT_EQ(Exists(run.OutputPath), !written) << yield;
    if (!written) {
      ASSERT_EQ(run.Output(), "old") << yield;
    }
  }
  EXPECT_GT(cancelled, 100);
}

}  // namespace
}  // namespace folioweld::testing
