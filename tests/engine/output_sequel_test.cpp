// What a job does with its finished output before it says that it has one.

#include "engine/output_sequel.h"

#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/document_builder.h"
#include "tests/support/merge_run.h"

namespace folioweld::testing {
namespace {

using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using Outcome = OutputSequel::Outcome;

class RecordingSequel : public OutputSequel {
 public:
  Outcome Run(const FileInformation& output, std::string& words) override {
    ++Runs;
    Output = output;
    if (OnRun) OnRun();
    words = Words;
    return Result;
  }

  int Runs = 0;
  FileInformation Output;
  std::function<void()> OnRun;
  std::string Words;
  Outcome Result = Outcome::Kept;
};

class OutputSequelTest : public ::testing::Test {
 protected:
  OutputSequelTest() {
    merge_.Job.SetSequel(&sequel_);
    merge_.State.ShowOutputAfterMerge = true;
  }
  RecordingSequel sequel_;
  MergeRun merge_{SimpleDocument(1, "a"), SimpleDocument(1, "b")};
};

TEST_F(OutputSequelTest, GetsTheFinishedOutputAndItsDocuments) {
  sequel_.OnRun = [this] {
    EXPECT_EQ(merge_.State.DocFileNumber(3), -1) << "it is closed";
    EXPECT_THAT(merge_.Shell.ShownOutputs, IsEmpty());
    const auto& documents = merge_.State.DocSources(3);
    ASSERT_EQ(documents.size(), 2U);
    EXPECT_EQ(documents[0].FirstObject, 0);
    EXPECT_EQ(documents[1].FirstObject, merge_.State.ObjectsInDoc1);
    EXPECT_EQ(documents[1].Read.Identity,
              merge_.System.GetFileAttributes(merge_.SecondPath).Value().Identity);
  };
  merge_.Run();
  EXPECT_EQ(sequel_.Runs, 1);
  const FileInformation output = merge_.System.GetFileAttributes(merge_.OutputPath).Value();
  EXPECT_EQ(sequel_.Output.Identity, output.Identity);
  EXPECT_EQ(sequel_.Output.Size, output.Size);
  EXPECT_EQ(merge_.Shell.ShownOutputs.size(), 1U);
  EXPECT_THAT(merge_.Status(2), EndsWith("   -> OK\r\n"));
}

TEST_F(OutputSequelTest, DoesNotFollowAMergeThatFails) {
  merge_.System.Decide = FaultingSystem::Failing("WriteFile", ENOSPC);
  merge_.Run();
  EXPECT_TRUE(merge_.Failed());
  EXPECT_EQ(sequel_.Runs, 0);
}

TEST_F(OutputSequelTest, ItsWarningIsLoggedAndCountedLikeAnyOther) {
  sequel_.Words = "not all of it";
  merge_.Run();
  EXPECT_THAT(merge_.Status(2), EndsWith("   -> OK\r\n1 warning, see the log\r\n"));
  EXPECT_EQ(merge_.LogLines().back(), "[Folioweld-cmdOK]=>not all of it");
  merge_.State.LogEnabled = false;
  merge_.Run();
  EXPECT_THAT(merge_.Status(2), EndsWith("   -> OK\r\nnot all of it\r\n"));
}

TEST_F(OutputSequelTest, MayAddToWhatIsToldOfTheDocuments) {
  sequel_.OnRun = [this] {
    merge_.State.DocSources(3)[1].Alterations.push_back(
        {AlterationKind::NotCarriedOver, -1, -1, 1, "form: why", false});
  };
  merge_.Run();
  EXPECT_EQ(merge_.LogLines().back(),
            "[Folioweld-cmdOK]=>\"" + merge_.SecondPath + "\": not wholly carried over (form: why)");
  EXPECT_THAT(merge_.Status(2), EndsWith("1 warning, see the log\r\n"));
}

TEST_F(OutputSequelTest, AnOutputThatItMadeUnusableIsRemovedAndTheJobHasFailed) {
  sequel_.Result = Outcome::Unusable;
  sequel_.Words = "the reason";
  merge_.Run();
  EXPECT_TRUE(merge_.Failed());
  EXPECT_FALSE(Exists(merge_.OutputPath));
  EXPECT_EQ(merge_.State.DocFileName(3), "");
  EXPECT_THAT(merge_.Status(2), EndsWith("   -> FAILED or cancelled\r\n"));
  EXPECT_EQ(merge_.LogLines().back(),
            "[Folioweld-cmdOK]=>The merge failed: \"" + merge_.OutputPath + "\": the reason");
  EXPECT_THAT(merge_.Shell.ShownOutputs, IsEmpty());
}

TEST_F(OutputSequelTest, WhatIsInTheOutputsPlaceIsLeftAlone) {
  sequel_.Result = Outcome::NotThere;
  merge_.Run();
  EXPECT_TRUE(merge_.Failed());
  EXPECT_TRUE(Exists(merge_.OutputPath));
}

TEST_F(OutputSequelTest, ACancelMeanwhileLeavesTheOutputAndDoesNotShowIt) {
  sequel_.OnRun = [this] { merge_.State.AbortRequested = true; };
  merge_.Run();
  EXPECT_FALSE(merge_.Failed());
  EXPECT_TRUE(Exists(merge_.OutputPath));
  EXPECT_TRUE(merge_.State.CancelSeen);
  EXPECT_THAT(merge_.Shell.ShownOutputs, IsEmpty()) << "whoever cancels does not wait for it";
}

TEST_F(OutputSequelTest, WarningsOfWhatIsCarriedOverWaitForIt) {
  const std::string hidden =
      DocumentBuilder()
          .Object(1, "<</Type/Catalog/Pages 2 0 R/OCProperties<</OCGs[3 0 R]/D<</OFF[3 0 R]>>>>>>")
          .Object(2, "<</Type/Pages/Kids[]/Count 0>>")
          .Object(3, "<</Type/OCG/Name(x)>>")
          .Build();
  merge_.Folder.Write("b.pdf", hidden);
  merge_.State.CatalogsAreCarried = true;
  merge_.Run();
  EXPECT_THAT(merge_.Status(2), EndsWith("   -> OK\r\n"));
  sequel_.OnRun = [this] { merge_.State.CatalogsAreCarried = false; };
  merge_.State.DocFileName(3) = merge_.OutputPath;
  merge_.Run();
  EXPECT_THAT(merge_.Status(2), EndsWith("1 warning, see the log\r\n"));
  EXPECT_THAT(merge_.LogLines().back(), HasSubstr("layers that its catalog hides are shown"));
}

}  // namespace
}  // namespace folioweld::testing
