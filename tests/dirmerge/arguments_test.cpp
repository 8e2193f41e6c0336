#include "dirmerge/arguments.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <sstream>

namespace folioweld {
namespace {

using Wish = Arguments::Wish;
using Names = std::vector<std::string>;

void ExpectRefused(const Names& arguments, const std::string& word) {
  const Arguments parsed = ParseArguments(arguments);
  EXPECT_EQ(parsed.Asked, Wish::Refuse);
  EXPECT_NE(parsed.Problem.find(word), std::string::npos) << parsed.Problem;
  EXPECT_EQ(parsed.Problem.find('\n'), std::string::npos) << parsed.Problem;
}

TEST(ParseArguments, OpensTheWindowWithoutArgumentsAndForALoneName) {
  EXPECT_EQ(ParseArguments({}).Asked, Wish::OpenWindow);
  EXPECT_EQ(ParseArguments({"a.pdf"}).Asked, Wish::OpenWindow);
  EXPECT_EQ(ParseArguments({"--"}).Asked, Wish::OpenWindow);
  EXPECT_EQ(ParseArguments({"--", "--help"}).Asked, Wish::OpenWindow);
  EXPECT_FALSE(ParseArguments({}).RunsWithoutScreen());
}

TEST(ParseArguments, TakesAnOnlyArgumentWithABarBeforeAnyOption) {
  for (const char* text : {"out.pdf|docs", "-x.pdf|f", "--help|f", "--|f", "a|b|c"}) {
    const Arguments parsed = ParseArguments({text});
    EXPECT_EQ(parsed.Asked, Wish::JoinFolder) << text;
    EXPECT_EQ(parsed.FolderText, text);
    EXPECT_TRUE(parsed.RunsWithoutScreen()) << text;
  }
}

TEST(ParseArguments, NeedsAScreenToAskForAnOutputThatIsNotNamed) {
  EXPECT_FALSE(ParseArguments({"|docs"}).RunsWithoutScreen());
  EXPECT_FALSE(ParseArguments({"", "docs"}).RunsWithoutScreen());
}

TEST(ParseArguments, SplitsAnOnlyOperandWithABarAfterOptions) {
  const Arguments parsed = ParseArguments({"--order=date", "out.pdf|docs"});
  EXPECT_EQ(parsed.Asked, Wish::JoinFolder);
  EXPECT_EQ(parsed.FolderText, "out.pdf|docs");
  EXPECT_EQ(parsed.SortOrder, std::int16_t{2});
}

TEST(ParseArguments, TakesTwoOperandsOrMoreAsOutputAndSourcesWhateverTheyHold) {
  const Arguments parsed = ParseArguments({"out|1.pdf", "a|b", "c", "--help", "-v"});
  EXPECT_EQ(parsed.Asked, Wish::JoinSources);
  EXPECT_EQ(parsed.Output, "out|1.pdf");
  EXPECT_EQ(parsed.Sources, (Names{"a|b", "c", "--help", "-v"}));
  EXPECT_FALSE(parsed.Verbose) << "after OUTPUT nothing is an option";
}

TEST(ParseArguments, EndsTheOptionsAtTwoDashes) {
  const Arguments parsed = ParseArguments({"-q", "--", "-out.pdf", "docs"});
  EXPECT_TRUE(parsed.Quiet);
  EXPECT_EQ(parsed.Output, "-out.pdf");
  EXPECT_EQ(parsed.Sources, Names{"docs"});
}

TEST(ParseArguments, TakesEveryOrder) {
  EXPECT_EQ(ParseArguments({"a", "b"}).SortOrder, std::nullopt);
  EXPECT_EQ(ParseArguments({"--order=name", "a", "b"}).SortOrder, std::int16_t{1});
  EXPECT_EQ(ParseArguments({"--order=name-reversed", "a", "b"}).SortOrder, std::int16_t{-1});
  EXPECT_EQ(ParseArguments({"--order", "date", "a", "b"}).SortOrder, std::int16_t{2});
  EXPECT_EQ(ParseArguments({"--order=date-reversed", "a", "b"}).SortOrder, std::int16_t{-2});
  ExpectRefused({"--order=size", "a", "b"}, "date-reversed");
}

TEST(ParseArguments, LetsTheLastOfVerboseAndQuietWin) {
  EXPECT_TRUE(ParseArguments({"-qv", "a", "b"}).Verbose);
  EXPECT_FALSE(ParseArguments({"-qv", "a", "b"}).Quiet);
  EXPECT_TRUE(ParseArguments({"--verbose", "--quiet", "a", "b"}).Quiet);
  EXPECT_FALSE(ParseArguments({"--verbose", "--quiet", "a", "b"}).Verbose);
}

TEST(ParseArguments, TakesEveryChoiceOfProgress) {
  EXPECT_EQ(ParseArguments({"a", "b"}).Progress, ProgressChoice::Auto);
  EXPECT_EQ(ParseArguments({"--progress=never", "a", "b"}).Progress, ProgressChoice::Never);
  EXPECT_EQ(ParseArguments({"--progress=always", "a", "b"}).Progress, ProgressChoice::Always);
  ExpectRefused({"--progress=maybe", "a", "b"}, "always");
}

TEST(ParseArguments, TakesMoreSourcesFromAFile) {
  const Arguments parsed = ParseArguments({"--files0-from=-", "out|1.pdf"});
  EXPECT_EQ(parsed.Asked, Wish::JoinSources);
  EXPECT_EQ(parsed.SourcesFile, "-");
  EXPECT_EQ(parsed.Output, "out|1.pdf") << "an output like any other when sources come from elsewhere";
  EXPECT_TRUE(parsed.Sources.empty());
  ExpectRefused({"--files0-from=list"}, "OUTPUT");
}

TEST(ParseArguments, TakesWhatIsToBeCarriedOver) {
  EXPECT_FALSE(ParseArguments({"a", "b"}).Carry.Wanted);
  const Arguments parsed =
      ParseArguments({"--carry", "--prepare", "--bookmarks=own", "--title=\xC3\x84 title", "a", "b"});
  EXPECT_EQ(parsed.Asked, Wish::JoinSources);
  EXPECT_TRUE(parsed.Carry.Wanted && parsed.Prepare);
  EXPECT_EQ(parsed.Carry.Bookmarks, "own");
  EXPECT_EQ(parsed.Carry.Title, "\xC3\x84 title");
  EXPECT_EQ(ParseArguments({"--title=", "--carry", "a|b"}).Carry.Title, "");
  for (const char* word : {"documents", "both", "none"}) {
    EXPECT_EQ(ParseArguments({"--carry", std::string("--bookmarks=") + word, "a", "b"}).Carry.Bookmarks,
              word);
  }
  ExpectRefused({"--carry", "--bookmarks=all", "a", "b"}, "documents, own, both or none");
  ExpectRefused({"--carry", "--title=\xC4", "a", "b"}, "UTF-8");
  ExpectRefused({"--bookmarks=own", "a", "b"}, "need --carry");
  ExpectRefused({"--prepare", "--title=T"}, "need --carry");
}

TEST(ParseArguments, AWindowThatPreparesAlsoCarriesOver) {
  EXPECT_TRUE(ParseArguments({"--prepare"}).CarryHere().Wanted);
  EXPECT_TRUE(ParseArguments({"--carry"}).CarryHere().Wanted);
  EXPECT_EQ(ParseArguments({"--carry"}).Asked, Wish::OpenWindow);
  EXPECT_FALSE(ParseArguments({"--prepare", "a", "b"}).CarryHere().Wanted);
  EXPECT_FALSE(ParseArguments({"--prepare", "|docs"}).CarryHere().Wanted);
  EXPECT_FALSE(ParseArguments({}).CarryHere().Wanted);
}

TEST(ParseArguments, RefusesWhatIsNoOptionOrLacksItsOperands) {
  ExpectRefused({"--frobnicate", "a", "b"}, "--frobnicate");
  ExpectRefused({"-x", "a", "b"}, "-x");
  ExpectRefused({"--order"}, "--order");
  ExpectRefused({"--quiet=yes", "a", "b"}, "--quiet=yes");
  for (const char* alone : {"-v", "-q", "--order=date", "--progress=never"}) ExpectRefused({alone}, "SOURCE");
}

TEST(ParseArguments, AnswersHelpAndVersionWhateverElseIsAsked) {
  EXPECT_EQ(ParseArguments({"-v", "--help", "a", "b"}).Asked, Wish::ShowHelp);
  EXPECT_EQ(ParseArguments({"-h"}).Asked, Wish::ShowHelp);
  EXPECT_EQ(ParseArguments({"--version", "--frobnicate"}).Asked, Wish::ShowVersion);
  EXPECT_EQ(ParseArguments({"-V"}).Asked, Wish::ShowVersion);
  EXPECT_TRUE(ParseArguments({"-V"}).RunsWithoutScreen());
}

TEST(HelpText, FitsOnOneScreenAndNamesTheExitStatuses) {
  const std::string help = HelpText();
  EXPECT_LE(std::count(help.begin(), help.end(), '\n'), 24);
  std::istringstream lines(help);
  for (std::string line; std::getline(lines, line);) EXPECT_LE(line.size(), 80U) << line;
  for (const char* status : {"\n  0  ", "\n  1  ", "\n  2  ", "\n  3  "}) {
    EXPECT_NE(help.find(status), std::string::npos) << status;
  }
}

TEST(ParseArguments, KeepsTheArgumentsWithBlanksBetweenThem) {
  EXPECT_EQ(ParseArguments({}).Text, "");
  EXPECT_EQ(ParseArguments({"out.pdf|docs"}).Text, "out.pdf|docs");
  EXPECT_EQ(ParseArguments({"-v", "", "my docs", "c"}).Text, "-v  my docs c");
}

}  // namespace
}  // namespace folioweld
