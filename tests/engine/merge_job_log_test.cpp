// What the job writes to the activity log, and encrypted inputs.

#include <gtest/gtest.h>

#include "tests/support/document_builder.h"
#include "tests/support/merge_run.h"
#include "tests/support/status_texts.h"

namespace folioweld::testing {
namespace {

using Events = std::vector<std::string>;

DocumentBuilder Pages() {
  DocumentBuilder builder;
  builder.Object(1, "<</Type/Catalog/Pages 2 0 R>>").Object(2, "<</Type/Pages/Kids[]/Count 0>>");
  return builder;
}

std::string Encrypted(const std::string& entry = "/Encrypt 3 0 R") {
  return Pages().Object(3, "<</Filter/Standard>>").TrailerExtra(entry).Build();
}

TEST(MergeJobLogTest, ASuccessIsNotLogged) {
  MergeRun run(SimpleDocument(1), SimpleDocument(1));
  run.Run();
  EXPECT_EQ(run.LogLines(), Events{});
  EXPECT_EQ(run.Shell.Notices, Events{});
}

TEST(MergeJobLogTest, AFailureIsOneLineWithThePrefix) {
  MergeRun run(Pages().Object(3, "true").Build(), "");
  run.Run();
  ASSERT_EQ(run.LogLines().size(), 1U);
  EXPECT_EQ(
      run.LogLines()[0].find("[Folioweld-cmdOK]=>The merge failed: \"" + run.FirstPath + "\", object 3, "),
      0U);
  EXPECT_EQ(run.Shell.Notices, run.LogLines());
}

TEST(MergeJobLogTest, WithTheLogOffNothingIsLoggedButTheNoticesStay) {
  for (const std::string& first : {Pages().Object(3, "true").Build(), kNoDocument, Encrypted()}) {
    MergeRun run(first, "");
    run.State.LogEnabled = false;
    run.Run();
    EXPECT_EQ(run.LogLines(), Events{});
    EXPECT_EQ(run.Shell.Notices.size(), 1U);
    EXPECT_EQ(run.Shell.Notices.at(0).find("[Folioweld-cmdOK]=>"), 0U);
  }
}

TEST(MergeJobLogTest, ALeftOutSecondInputAndAFailureAreALineEach) {
  MergeRun run(Pages().Object(3, "true").Build(), kNoDocument);
  run.Run();
  ASSERT_EQ(run.LogLines().size(), 2U);
  EXPECT_NE(run.LogLines()[0].find("The second input is not accepted and left out: "), std::string::npos);
  EXPECT_NE(run.LogLines()[1].find("The merge failed: "), std::string::npos);
}

TEST(MergeJobLogTest, NamesAreLoggedWholeHoweverLongTheyAre) {
  MergeRun run;
  run.Folder.MakeFolder(std::string(200, 'f'));
  run.State.DocFileName(1) =
      run.Folder.Write(std::string(200, 'f') + "/" + std::string(200, 'n'), kNoDocument);
  const std::string name = run.State.DocFileName(1);
  run.Run();
  ASSERT_EQ(run.LogLines().size(), 1U);
  EXPECT_NE(run.LogLines()[0].find("\"" + name + "\""), std::string::npos);
}

class EncryptedInputTest : public ::testing::Test {
 protected:
  static Events Line(const std::string& path) {
    return {"[Folioweld-cmdOK]=>\"" + path + "\" is encrypted: its pages will not be readable in the output"};
  }
};

TEST_F(EncryptedInputTest, TheFirstIsJoinedAndLogged) {
  MergeRun run(Encrypted(), SimpleDocument(1));
  run.Run();
  EXPECT_EQ(run.State.MergeStatus, 2);
  EXPECT_EQ(run.LogLines(), Line(run.FirstPath));
  EXPECT_EQ(run.Shell.Notices, run.LogLines());
  EXPECT_TRUE(Exists(run.OutputPath));
}

TEST_F(EncryptedInputTest, TheSecondIsJoinedAndLogged) {
  MergeRun run(SimpleDocument(1), Encrypted());
  run.Run();
  EXPECT_EQ(run.State.MergeStatus, 2);
  EXPECT_EQ(run.LogLines(), Line(run.SecondPath));
}

TEST_F(EncryptedInputTest, BothAreALineEach) {
  MergeRun run(Encrypted(), Encrypted());
  run.Run();
  EXPECT_EQ(run.LogLines().size(), 2U);
}

TEST_F(EncryptedInputTest, TheOutputsTrailerDoesNotSaySo) {
  MergeRun run(Encrypted(), "");
  run.Run();
  EXPECT_EQ(run.Output().find("/Encrypt"), std::string::npos);
}

TEST_F(EncryptedInputTest, ADirectDictionaryCountsAsWell) {
  MergeRun run(Encrypted("/Encrypt<</Filter/Standard>>"), "");
  run.Run();
  EXPECT_EQ(run.LogLines(), Line(run.FirstPath));
}

TEST_F(EncryptedInputTest, OnlyTheWholeKeyCounts) {
  MergeRun run(Encrypted("/EncryptX 3 0 R/Other<</Encrypt 3 0 R>>"), "");
  run.Run();
  EXPECT_EQ(run.LogLines(), Events{});
}

TEST_F(EncryptedInputTest, OnlyTheNewestTrailerCounts) {
  MergeRun run(Pages()
                   .Object(3, "<</Filter/Standard>>")
                   .Trailer("/Size 4/Root 1 0 R/Encrypt 3 0 R")
                   .EndRevision()
                   .Object(3, "<<>>")
                   .Trailer("/Size 4/Root 1 0 R")
                   .Build(),
               "");
  run.Run();
  EXPECT_EQ(run.LogLines(), Events{});
}

TEST_F(EncryptedInputTest, WhatAnEarlierJobFoundDoesNotStick) {
  MergeRun run(Encrypted(), Encrypted());
  run.Run();
  run.State.DocFileName(1) = run.State.DocFileName(2) = run.Folder.Write("c.pdf", SimpleDocument(1));
  run.Run();
  EXPECT_EQ(run.LogLines().size(), 2U) << "one a document, of the first job";
}

TEST_F(EncryptedInputTest, IsNotLoggedWhenTheReadingFails) {
  MergeRun run(Encrypted(), Pages().Object(3, "true").Build());
  run.Run();
  ASSERT_EQ(run.LogLines().size(), 1U);
  EXPECT_NE(run.LogLines()[0].find("The merge failed: "), std::string::npos);
}

}  // namespace
}  // namespace folioweld::testing
