// The largest joins that the format's handling allows, and one more.

#include <gtest/gtest.h>

#include "tests/support/document_builder.h"
#include "tests/support/merge_run.h"

namespace folioweld::testing {
namespace {

/// A document of so many objects besides object 0, two text lines each.
std::string WithObjects(int count) {
  DocumentBuilder builder;
  builder.Object(1, "<</Type/Catalog/Pages 2 0 R>>").Object(2, "<</Type/Pages/Kids[]/Count 0>>");
  for (int number = 3; number <= count; ++number)
    builder.Object(number, "<</N " + std::to_string(number) + ">>");
  return builder.Build();
}

void ExpectTooManyLines(MergeRun& run) {
  run.Run();
  EXPECT_TRUE(run.Failed());
  EXPECT_FALSE(Exists(run.OutputPath));
  const std::string end = " Write the output file   -> FAILED or cancelled\r\n";
  ASSERT_GT(run.Status(2).size(), end.size());
  EXPECT_EQ(run.Status(2).substr(run.Status(2).size() - end.size()), end);
  ASSERT_EQ(run.LogLines().size(), 1U);
  EXPECT_NE(
      run.LogLines()[0].find("the output would have 32770 lines of objects, two for each, and its writer "
                             "counts up to 32768"),
      std::string::npos)
      << run.LogLines()[0];
}

TEST(MergeJobLimitsTest, AnOlderOutputSurvivesObjectsThatAreTooMany) {
  MergeRun run(WithObjects(16385), "");
  run.Folder.Write("out.pdf", "older");
  run.Run();
  EXPECT_TRUE(run.Failed());
  EXPECT_EQ(run.Output(), "older");
}

TEST(MergeJobLimitsTest, ObjectsWhoseLinesEndAtIndex32767AreWritten) {
  MergeRun run(WithObjects(16384), "");
  run.Run();
  EXPECT_EQ(run.State.MergeStatus, 2);
  EXPECT_EQ(WrittenObject(run.Output(), 16384), "16384 0 obj\r<</N 16384>>\rendobj");
}

TEST(MergeJobLimitsTest, AnObjectWithLinesBeyondIndex32767FailsTheJobAndLeavesNoOutput) {
  MergeRun run(WithObjects(16385), "");
  ExpectTooManyLines(run);
}

TEST(MergeJobLimitsTest, TheLinesOfBothInputsAndTheFillerCountTogether) {
  MergeRun run(WithObjects(10000), WithObjects(6383));
  run.Run();
  EXPECT_EQ(run.State.MergeStatus, 2);
  EXPECT_EQ(WrittenObject(run.Output(), 16384), "16384 0 obj\r<</N 6383>>\rendobj");
}

TEST(MergeJobLimitsTest, OneObjectMoreInTheSecondInputIsTooMany) {
  MergeRun run(WithObjects(10000), WithObjects(6384));
  ExpectTooManyLines(run);
}

}  // namespace
}  // namespace folioweld::testing
