#include "prepare/carry/carry_arguments.h"

#include <gmock/gmock.h>

namespace folioweld {
namespace {

using CarryWish = CarryArguments::Wish;
using ::testing::HasSubstr;

TEST(CarryArgumentsTest, NameFilesLimitsBookmarksAndATitle) {
  const CarryArguments arguments =
      ParseCarryArguments({"--descriptors=3,4", "--limits=1,2,3", "--bookmarks=own", "--title=A = B"});
  EXPECT_EQ(arguments.Asked, CarryWish::Append);
  EXPECT_EQ(arguments.Joined, 3);
  EXPECT_EQ(arguments.List, 4);
  EXPECT_EQ(arguments.Limits->ProcessorSeconds, 2);
  EXPECT_EQ(arguments.Shown, Bookmarks::Own);
  EXPECT_EQ(arguments.Title, "A = B");
}

TEST(CarryArgumentsTest, HaveDefaults) {
  const CarryArguments arguments = ParseCarryArguments({"--descriptors=3,4"});
  EXPECT_EQ(arguments.Shown, Bookmarks::Both);
  EXPECT_FALSE(arguments.Limits);
  EXPECT_FALSE(arguments.Title);
}

TEST(CarryArgumentsTest, AreRefusedWithTheOneThatIsNotUnderstood) {
  for (const char* word : {"", "x", "--title", "--descriptors=3", "--descriptors=3,4,5", "--descriptors=3,x",
                           "--limits=1,2", "--bookmarks=some", "--what=1"}) {
    const CarryArguments arguments = ParseCarryArguments({"--descriptors=3,4", word});
    EXPECT_EQ(arguments.Asked, CarryWish::Refuse) << word;
    EXPECT_EQ(arguments.Problem,
              "the option \"" + std::string(word) + "\" is unknown or cannot be used like this");
  }
  EXPECT_EQ(ParseCarryArguments({}).Problem, "--descriptors is needed");
}

TEST(CarryArgumentsTest, CanAskForHelpAndVersion) {
  EXPECT_EQ(ParseCarryArguments({"--help"}).Asked, CarryWish::ShowHelp);
  EXPECT_EQ(ParseCarryArguments({"--version"}).Asked, CarryWish::ShowVersion);
  for (const char* option : {"--descriptors=", "--limits=", "--bookmarks=", "--title="}) {
    EXPECT_THAT(CarryHelpText(), HasSubstr(option));
  }
}

}  // namespace
}  // namespace folioweld
