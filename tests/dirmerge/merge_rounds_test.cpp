// The scheme of the rounds, seen through the whole directory merge.

#include <algorithm>
#include <cerrno>
#include <gtest/gtest.h>
#include <map>
#include <regex>
#include <string>
#include <unistd.h>
#include <vector>

#include "tests/dirmerge/directory_merge_fixture.h"
#include "tests/support/document_builder.h"

namespace folioweld {
namespace {

using testing::FaultingSystem;
using testing::Names;
using testing::PageTexts;

class MergeRoundsTest : public testing::DirectoryMergeFixture {
 protected:
  /// The lines of the rounds and the clean-up and not the one about the output, with the temporaries named
  /// T0, T1 ... as they appear, and without the folders.
  [[nodiscard]] Names RoundLines() const {
    std::map<std::string, std::string> known;
    Names lines;
    bool begun = false;
    for (std::string line : MergeLines()) {
      begun = begun || line.rfind("iNumFilesToMerge", 0) == 0;
      if (!begun || line.rfind("Output: ", 0) == 0) continue;
      static const std::regex temporary(R"(Pdf[0-9A-F]{4}\.tmp)");
      for (std::smatch match; std::regex_search(line, match, temporary);) {
        const std::string label =
            known.try_emplace(match.str(), "T" + std::to_string(known.size())).first->second;
        line = match.prefix().str() + label + match.suffix().str();
      }
      for (const std::string& folder : {Docs(), Tmp(), folder_.Path() + "/"}) {
        for (auto at = line.find(folder); at != std::string::npos; at = line.find(folder)) {
          line.erase(at, folder.size());
        }
      }
      lines.push_back(line);
    }
    return lines;
  }

  void AddLetters(int count) const {
    for (int i = 0; i < count; ++i) AddDocument(std::string(1, static_cast<char>('a' + i)));
  }
};

TEST_F(MergeRoundsTest, OneFileIsWrittenInASinglePassWithAnEmptySecondInput) {
  AddLetters(1);
  EXPECT_TRUE(Merge().Complete());
  EXPECT_EQ(RoundLines(), (Names{"iNumFilesToMerge: 1   indBaseTmp: 0   iLastIndex: 0   indMaxTmp: -1",
                                 "sPdfM(1)= \"a\"  +  sPdfM(2)= \"\"  -> sPdfM(3)= \"joined.pdf\""}));
  EXPECT_EQ(PageTexts(Output()), Names{"a"});
}

TEST_F(MergeRoundsTest, TwoFilesGoStraightIntoTheOutput) {
  AddLetters(2);
  EXPECT_TRUE(Merge().Complete());
  EXPECT_EQ(RoundLines(), (Names{"iNumFilesToMerge: 2   indBaseTmp: 0   iLastIndex: 0   indMaxTmp: -1",
                                 "sPdfM(1)= \"a\"  +  sPdfM(2)= \"b\"  -> sPdfM(3)= \"joined.pdf\""}));
  EXPECT_EQ(PageTexts(Output()), (Names{"a", "b"}));
}

TEST_F(MergeRoundsTest, ThreeFilesCarryTheOddOne) {
  AddLetters(3);
  EXPECT_TRUE(Merge().Complete());
  EXPECT_EQ(
      RoundLines(),
      (Names{"iNumFilesToMerge: 3   indBaseTmp: 0   iLastIndex: 1   indMaxTmp: -1",
             "sPdfM(1)= \"a\"  +  sPdfM(2)= \"b\"  -> sPdfM(3)= \"T0\"", "sTmpFiles(1) = filesToMerge(2)",
             "iNumFilesToMerge: 2   indBaseTmp: 2   iLastIndex: 0   indMaxTmp: 1",
             "sPdfM(1)= \"T0\"  +  sPdfM(2)= \"c\"  -> sPdfM(3)= \"joined.pdf\"", " Kill \"T0\""}));
  EXPECT_EQ(PageTexts(Output()), (Names{"a", "b", "c"}));
}

TEST_F(MergeRoundsTest, FiveFilesGoThroughThreeRounds) {
  AddLetters(5);
  EXPECT_TRUE(Merge().Complete());
  EXPECT_EQ(
      RoundLines(),
      (Names{"iNumFilesToMerge: 5   indBaseTmp: 0   iLastIndex: 2   indMaxTmp: -1",
             "sPdfM(1)= \"a\"  +  sPdfM(2)= \"b\"  -> sPdfM(3)= \"T0\"",
             "sPdfM(1)= \"c\"  +  sPdfM(2)= \"d\"  -> sPdfM(3)= \"T1\"", "sTmpFiles(2) = filesToMerge(4)",
             "iNumFilesToMerge: 3   indBaseTmp: 3   iLastIndex: 1   indMaxTmp: 2",
             "sPdfM(1)= \"T0\"  +  sPdfM(2)= \"T1\"  -> sPdfM(3)= \"T2\"", "sTmpFiles(4) = filesToMerge(2)",
             "iNumFilesToMerge: 2   indBaseTmp: 5   iLastIndex: 0   indMaxTmp: 4",
             "sPdfM(1)= \"T2\"  +  sPdfM(2)= \"e\"  -> sPdfM(3)= \"joined.pdf\"", " Kill \"T0\"",
             " Kill \"T1\"", " Kill \"T2\""}));
  EXPECT_EQ(PageTexts(Output()), (Names{"a", "b", "c", "d", "e"}));
}

TEST_F(MergeRoundsTest, EveryCountGivesAllPagesInOrder) {
  Names expected;
  for (int count = 1; count <= 17; ++count) {
    AddLetters(count);
    expected.emplace_back(1, static_cast<char>('a' + count - 1));
    ASSERT_TRUE(Merge().Complete()) << count;
    ASSERT_EQ(PageTexts(Output()), expected) << count;
    ExpectIdle();
  }
}

TEST_F(MergeRoundsTest, CarriedFileIsReadFromItsFolderInEveryRoundAndNeverDeleted) {
  AddLetters(9);
  const std::string odd = testing::ReadFile(Doc("i"));
  EXPECT_TRUE(Merge().Complete());
  const Names lines = RoundLines();
  for (const char* line :
       {"sTmpFiles(4) = filesToMerge(8)", "sTmpFiles(7) = filesToMerge(4)", "sTmpFiles(9) = filesToMerge(2)",
        "sPdfM(1)= \"T6\"  +  sPdfM(2)= \"i\"  -> sPdfM(3)= \"joined.pdf\""}) {
    EXPECT_EQ(std::count(lines.begin(), lines.end(), line), 1) << line;
  }
  EXPECT_EQ(std::count(lines.begin(), lines.end(), " Kill \"i\""), 0);
  EXPECT_EQ(testing::ReadFile(Doc("i")), odd);
}

TEST_F(MergeRoundsTest, NoRoundDeletesItsInputs) {
  AddLetters(5);
  std::size_t most = 0;
  shell_.OnYield = [&] { most = std::max(most, Temporaries().size()); };
  EXPECT_TRUE(Merge().Complete());
  EXPECT_EQ(most, 3U) << "all temporaries live until the job ends";
  EXPECT_TRUE(Temporaries().empty());
}

TEST_F(MergeRoundsTest, TemporariesAreMadeOneAtATimeAndEmpty) {
  AddLetters(6);
  shell_.OnStatus = [&](int line) {
    if (line == 0 && shell_.StatusText(0).empty()) {
      std::size_t empty = 0;
      for (const std::string& name : Temporaries())
        empty += testing::ReadFile(Tmp() + name).empty() ? 1U : 0U;
      EXPECT_LE(empty, 1U);
    }
  };
  EXPECT_TRUE(Merge().Complete());
}

TEST_F(MergeRoundsTest, TemporariesLieInTheChosenFolder) {
  AddLetters(3);
  const std::string mine = folder_.MakeFolder("mine");
  ASSERT_EQ(settings_.WriteSetting("MergeTmpDir", mine), 0);
  EXPECT_TRUE(Merge().Complete());
  const Names lines = MergeLines();
  const std::string& kill = lines.at(lines.size() - 2);
  EXPECT_EQ(kill.rfind(" Kill \"" + mine + "/Pdf", 0), 0U) << kill;
}

TEST_F(MergeRoundsTest, FailureToMakeATemporaryGoesToCleanUp) {
  AddLetters(5);
  system_.Decide = [&](const FaultingSystem::Call& call, std::size_t) {
    const bool second = call.Is("RandomNumber") && Temporaries().size() == 1;
    return FaultingSystem::Fault{second ? EIO : 0, 0};
  };
  EXPECT_FALSE(Merge().OutputWritten);
  EXPECT_EQ(RoundLines(),
            (Names{"iNumFilesToMerge: 5   indBaseTmp: 0   iLastIndex: 2   indMaxTmp: -1",
                   "sPdfM(1)= \"a\"  +  sPdfM(2)= \"b\"  -> sPdfM(3)= \"T0\"",
                   " Temporary file allocation problem!", "  because of Input/output error (\"\")",
                   "File: \"a\"  is missing in the output", "File: \"b\"  is missing in the output",
                   "File: \"c\"  is missing in the output", "File: \"d\"  is missing in the output",
                   "File: \"e\"  is missing in the output", " Kill \"T0\""}));
  ASSERT_EQ(shell_.Notices.size(), 7U);
  EXPECT_EQ(shell_.Notices[0], "[Folioweld-MergeDirectory]=> Temporary file allocation problem!");
  EXPECT_EQ(MessageTexts(), Names{"Unable to Merge and Create " + Output()});
  ExpectIdle();
}

TEST_F(MergeRoundsTest, SilentModeHoldsAroundEveryPairOnly) {
  AddLetters(3);
  std::vector<bool> silentWhileRunning;
  shell_.OnStatus = [&](int) { silentWhileRunning.push_back(program_.Merge.SilentMode); };
  shell_.OnYield = [&] { EXPECT_EQ(program_.Merge.SilentMode, program_.Merge.JobRunning); };
  EXPECT_TRUE(Merge().Complete());
  EXPECT_FALSE(silentWhileRunning.empty());
  EXPECT_EQ(std::count(silentWhileRunning.begin(), silentWhileRunning.end(), false), 0);
  EXPECT_TRUE(shell_.Messages.empty());
}

TEST_F(MergeRoundsTest, PiecesOfTheSameFileUnderTwoNamesAreBothJoined) {
  AddDocument("a");
  ASSERT_EQ(::link(Doc("a").c_str(), Doc("b").c_str()), 0);
  EXPECT_TRUE(Merge().Complete());
  EXPECT_EQ(PageTexts(Output()), (Names{"a", "a"}));
}

}  // namespace
}  // namespace folioweld
