#include "prepare/prepare_arguments.h"

#include <gtest/gtest.h>

namespace folioweld {
namespace {

using Wish = PrepareArguments::Wish;

TEST(PrepareArgumentsTest, NameAnInputAndAnOutput) {
  const auto arguments = ParsePrepareArguments({"--password-file=p", "--", "-a", "b"});
  EXPECT_EQ(arguments.Asked, Wish::CopyPaths);
  EXPECT_EQ(arguments.Input, "-a");
  EXPECT_EQ(arguments.Output, "b");
  EXPECT_EQ(arguments.PasswordFile, "p");
}

TEST(PrepareArgumentsTest, NameTwoOpenFilesAndLimits) {
  const auto arguments = ParsePrepareArguments({"--limits=1073741824,60,4294967296", "--descriptors=3,14"});
  ASSERT_EQ(arguments.Asked, Wish::CopyHandles);
  EXPECT_EQ(arguments.InputHandle, 3);
  EXPECT_EQ(arguments.OutputHandle, 14);
  ASSERT_TRUE(arguments.Limits);
  EXPECT_EQ(arguments.Limits->Memory, 1'073'741'824);
  EXPECT_EQ(arguments.Limits->ProcessorSeconds, 60);
  EXPECT_EQ(arguments.Limits->FileSize, 4'294'967'296);
}

TEST(PrepareArgumentsTest, AskForHelpOrTheVersion) {
  EXPECT_EQ(ParsePrepareArguments({"--help"}).Asked, Wish::ShowHelp);
  EXPECT_EQ(ParsePrepareArguments({"--version", "x"}).Asked, Wish::ShowVersion);
}

TEST(PrepareArgumentsTest, AreRefusedWhenTheyAreNotUnderstood) {
  const std::vector<std::vector<std::string>> wrong = {{},
                                                       {"a"},
                                                       {"a", "b", "c"},
                                                       {"--descriptors=3", "a", "b"},
                                                       {"--descriptors=3,"},
                                                       {"--limits=1,2", "a", "b"},
                                                       {"--limits=1,-2,3", "a", "b"},
                                                       {"--descriptors=3,4", "a"},
                                                       {"--descriptors=3,9999999999"},
                                                       {"--other"},
                                                       {"--password-file"}};
  for (const auto& words : wrong) {
    const auto arguments = ParsePrepareArguments(words);
    EXPECT_EQ(arguments.Asked, Wish::Refuse) << ::testing::PrintToString(words);
    EXPECT_FALSE(arguments.Problem.empty());
  }
}

}  // namespace
}  // namespace folioweld
