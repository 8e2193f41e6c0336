// The dictionary parser around the entries: what it takes for a dictionary, its depth, its yields.

#include <gtest/gtest.h>

#include "tests/support/processor_time.h"
#include "tests/support/reader_setup.h"

namespace folioweld {
namespace {

using testing::ProcessorSeconds;
using testing::ReaderSetup;
using testing::Repeat;

class DictionaryParserTest : public ::testing::Test, public ReaderSetup {
 protected:
  /// "<</A <</A ... 1 ...>>>>", as many dictionaries deep.
  static std::string Nested(int deep) { return Repeat("<</A ", deep) + "1" + Repeat(">>", deep); }

  /// How many dictionaries deep the rows go from the first one.
  int DepthOfRows() {
    int depth = 0;
    for (std::int32_t row = First; row >= 0; row = Row(row).NameRef) ++depth;
    return depth;
  }

  /// Joins and parses the lines as the trailer's are.
  std::int32_t Join(const std::vector<std::string>& lines) {
    Table<std::string> table;
    table.Reset(static_cast<std::int32_t>(lines.size()));
    for (std::size_t i = 0; i < lines.size(); ++i) table[static_cast<std::int32_t>(i)] = lines[i];
    return Reader.JoinAndParseDictionary(table, 0, static_cast<std::int32_t>(lines.size()) - 1);
  }
};

TEST_F(DictionaryParserTest, GivesZeroAndTheFirstRowWhenTheTextWasUsedUp) {
  EXPECT_EQ(Parse("<</A 1/B 2>>"), 0);
  EXPECT_EQ(First, 0);
  EXPECT_EQ(State.NameEntryCount, 2);
}

TEST_F(DictionaryParserTest, RowsAreChainedInTheOrderWritten) {
  static_cast<void>(Parse("<</A<</X 1>>/B 2/C 3>>"));
  EXPECT_EQ(Row(First).NameText, "/A");
  const std::int32_t second = Row(First).NameId;
  EXPECT_EQ(Row(second).NameText, "/B");
  const std::int32_t third = Row(second).NameId;
  EXPECT_EQ(Row(third).NameText, "/C");
  EXPECT_EQ(Row(third).NameId, -1);
}

TEST_F(DictionaryParserTest, FurtherDictionariesAreAppended) {
  static_cast<void>(Parse("<</A 1>>"));
  static_cast<void>(Parse("<</B 1>>"));
  EXPECT_EQ(First, 1);
  EXPECT_EQ(Row(0).NameText, "/A");
  EXPECT_EQ(Row(0).NameId, -1);
}

TEST_F(DictionaryParserTest, WhiteSpaceBeforeAndSpacesBehindAreAllowed) {
  EXPECT_EQ(Parse(" \r\n<</A 1>>  "), 0);
  EXPECT_EQ(First, 0);
}

TEST_F(DictionaryParserTest, ALineEndBehindIsNot) {
  EXPECT_EQ(Parse("<</A 1>>\r"), -1);
  EXPECT_EQ(Parse("<</A 1>>\n "), -1);
  EXPECT_EQ(First, -1);
}

TEST_F(DictionaryParserTest, StartsAtThePositionGiven) {
  EXPECT_EQ(Parse("garbage<</A 1>>", 8), 0);
  EXPECT_EQ(Row(First).NameText, "/A");
  EXPECT_EQ(Parse("garbage<</A 1>>", 7), -1);
}

TEST_F(DictionaryParserTest, WhatIsNoDictionaryGivesMinusOne) {
  for (const char* text : {"", "  \r\n", "[/A]", "/A", "<</A 1", "/A 1>>", "</A 1>>", "<</A 1>", "<<>", "<>>",
                           "<</A 1>>x", "x<</A 1>>", "\t<</A 1>>"}) {
    EXPECT_EQ(Parse(text), -1) << text;
    EXPECT_EQ(First, -1) << text;
  }
  EXPECT_EQ(State.NameEntryCount, 0);
}

TEST_F(DictionaryParserTest, AnEmptyDictionaryIsNoFailure) {
  for (const char* text : {"<<>>", "<< >>", "<<\r\n >>"}) {
    EXPECT_EQ(Parse(text), 0) << text;
    EXPECT_EQ(First, -1) << text;
  }
}

TEST_F(DictionaryParserTest, TextWithoutAnyKeyIsAFailure) {
  for (const char* text : {"<<1>>", "<<\t>>", "<<(x)>>"}) {
    EXPECT_EQ(Parse(text), -1) << text;
    EXPECT_EQ(First, -1) << text;
  }
}

TEST_F(DictionaryParserTest, AHundredDictionariesDeepAreAllRead) {
  EXPECT_EQ(Parse(Nested(100)), 0);
  EXPECT_EQ(DepthOfRows(), 100);
  std::int32_t last = First;
  while (Row(last).NameRef >= 0) last = Row(last).NameRef;
  EXPECT_EQ(Row(last).NameValue, "1");
}

TEST_F(DictionaryParserTest, OneDictionaryDeeperStaysText) {
  EXPECT_EQ(Parse(Nested(101)), 0);
  EXPECT_EQ(DepthOfRows(), 100);
  std::int32_t last = First;
  while (Row(last).NameRef >= 0) last = Row(last).NameRef;
  EXPECT_EQ(Row(last).NameValue, "<</A 1>>");
  EXPECT_EQ(Row(last).NameFlag, 0);
}

TEST_F(DictionaryParserTest, TheDepthCountsFromWhereItStood) {
  State.DictDepth = 99;
  EXPECT_EQ(Parse("<</A 1>>"), 0);
  State.DictDepth = 100;
  EXPECT_EQ(Parse("<</A 1>>"), -1);
  EXPECT_EQ(First, -1);
  EXPECT_EQ(State.DictDepth, 100);
}

TEST_F(DictionaryParserTest, EveryWayOutTakesTheDepthBack) {
  for (const std::string& text :
       {std::string("<</A 1>>"), std::string("x"), std::string(), Nested(101), std::string("<<1>>")}) {
    static_cast<void>(Parse(text));
    EXPECT_EQ(State.DictDepth, 0) << text;
  }
  EXPECT_EQ(Parse("<</A 1>>", 0), -1);
  EXPECT_EQ(State.DictDepth, 0);
}

TEST_F(DictionaryParserTest, YieldsOnceForEveryDictionary) {
  static_cast<void>(Parse("<</A <</X 1>>/B <</Y 1>>>>"));
  EXPECT_EQ(Shell.Yields, 3);
}

TEST_F(DictionaryParserTest, YieldsAmongManyKeysToo) {
  EXPECT_EQ(Parse("<<" + Repeat("/A 1", 999) + ">>"), 0);
  EXPECT_EQ(Shell.Yields, 1);
  EXPECT_EQ(Parse("<<" + Repeat("/A 1", 10000) + ">>"), 0);
  EXPECT_EQ(Shell.Yields, 1 + 1 + 10);
}

TEST_F(DictionaryParserTest, ACancelAmongManyKeysEndsTheParsingAsFailed) {
  Shell.OnYield = [&] { State.AbortRequested = Shell.Yields == 2; };
  EXPECT_NE(Parse("<<" + Repeat("/A 1", 10000) + ">>"), 0);
  EXPECT_EQ(State.NameEntryCount, 999);
  EXPECT_EQ(State.DictDepth, 0);
}

TEST_F(DictionaryParserTest, ACancelBeforeItIsSeen) {
  Shell.OnYield = [&] { State.AbortRequested = true; };
  EXPECT_EQ(Parse("<</A 1>>"), -1);
  EXPECT_EQ(First, -1);
  EXPECT_EQ(State.DictDepth, 0);
}

TEST_F(DictionaryParserTest, ACancelBetweenDictionariesLeavesTheRestText) {
  Shell.OnYield = [&] { State.AbortRequested = Shell.Yields >= 2; };
  static_cast<void>(Parse("<</A <</X 1>>>>"));
  EXPECT_EQ(Row(First).NameFlag, 0);
  EXPECT_EQ(State.NameEntryCount, 1);
}

// Joined lines.

TEST_F(DictionaryParserTest, LinesAreJoinedWithNothingBetweenThem) {
  const std::int32_t first = Join({"<</Size", " 6/Ro", "ot 1 0 R", ">>"});
  EXPECT_EQ(Row(first).NameText, "/Size");
  EXPECT_EQ(Row(first).NameValue, "6");
  EXPECT_EQ(Row(Row(first).NameId).NameText, "/Root");
}

TEST_F(DictionaryParserTest, AKeyRunsIntoAValueOnTheNextLine) {
  const std::int32_t first = Join({"<</Size", "6>>"});
  EXPECT_EQ(Row(first).NameText, "/Size6");
  EXPECT_EQ(Row(first).NameValue, "");
}

TEST_F(DictionaryParserTest, JoinedTextIsTrimmed) {
  EXPECT_EQ(Join({" \r", "<</A 1>>", "\r\n "}), 0);
  EXPECT_EQ(Join({"\n <</A 1>>\r"}), 1);
}

TEST_F(DictionaryParserTest, RowsOutliveTheLines) {
  std::int32_t first = -1;
  {
    Table<std::string> lines;
    lines.Reset(1);
    lines[0] = "<</A (a text that is too long to be kept inside a string object)>>";
    first = Reader.JoinAndParseDictionary(lines, 0, 0);
    lines[0].assign(lines[0].size(), 'x');
  }
  EXPECT_EQ(Row(first).NameText, "/A");
  EXPECT_EQ(Row(first).NameValue.substr(0, 7), "(a text");
}

TEST_F(DictionaryParserTest, LinesOutsideTheTableGiveMinusOne) {
  Table<std::string> lines;
  lines.Reset(2);
  lines[0] = "<</A 1>>";
  lines[1] = "<</B 1>>";
  EXPECT_EQ(Reader.JoinAndParseDictionary(lines, -1, 0), -1);
  EXPECT_EQ(Reader.JoinAndParseDictionary(lines, 0, 2), -1);
  EXPECT_EQ(Reader.JoinAndParseDictionary(lines, 1, 0), -1);
  EXPECT_EQ(Reader.JoinAndParseDictionary(lines, 2, 2), -1);
  EXPECT_EQ(State.NameEntryCount, 0);
  EXPECT_EQ(Reader.JoinAndParseDictionary(lines, 1, 1), 0);
}

TEST_F(DictionaryParserTest, WhatIsNoDictionaryGivesNoRow) {
  EXPECT_EQ(Join({"<</A 1"}), -1);
  EXPECT_EQ(Join({""}), -1);
}

TEST_F(DictionaryParserTest, ABrokenRuleGivesMinusOne) {
  Shell.OnYield = [] { throw OverflowError(); };
  EXPECT_EQ(Join({"<</A 1>>"}), -1);
  EXPECT_EQ(State.DictDepth, 0);
}

TEST_F(DictionaryParserTest, ExhaustedMemoryIsNotTakenForATextWithoutADictionary) {
  Shell.OnYield = [] { throw std::bad_alloc(); };
  EXPECT_THROW(static_cast<void>(Join({"<</A 1>>"})), std::bad_alloc);
  EXPECT_EQ(State.DictDepth, 0);
}

// Linear time: the square of these lengths is minutes.

class DictionarySpeed : public DictionaryParserTest,
                        public ::testing::WithParamInterface<std::pair<const char*, std::string>> {};

TEST_P(DictionarySpeed, AMillionBracketsOrMarksTakeNoTime) {
  const std::string& unit = GetParam().second;
  const double begin = ProcessorSeconds();
  static_cast<void>(Parse("<</A " + Repeat(unit, 1000000) + ">>"));
  static_cast<void>(Parse("<<" + Repeat(unit, 1000000) + "/A 1>>"));
  static_cast<void>(Parse("<<" + Repeat("/A" + unit, 200000) + ">>"));
  EXPECT_LT(ProcessorSeconds() - begin, 20);
}

INSTANTIATE_TEST_SUITE_P(
    Texts, DictionarySpeed,
    ::testing::Values(std::pair{"OpenArrays", std::string("[")}, std::pair{"ClosedArrays", std::string("[]")},
                      std::pair{"OpenDictionaries", std::string("<<")},
                      std::pair{"ClosedDictionaries", std::string(">>")},
                      std::pair{"OpenStrings", std::string("(")}, std::pair{"Strings", std::string("()")},
                      std::pair{"OpenHexStrings", std::string("<")}, std::pair{"Slashes", std::string("/")},
                      std::pair{"PercentsWithoutLineEnd", std::string("%")},
                      std::pair{"Comments", std::string("%\r")}, std::pair{"Blanks", std::string(" ")},
                      std::pair{"Escapes", std::string("\\")}),
    [](const auto& named) { return std::string(named.param.first); });

TEST_F(DictionaryParserTest, AMillionNestedArraysOrStringsTakeNoTime) {
  constexpr int kDeep = 1000000;
  const double begin = ProcessorSeconds();
  EXPECT_EQ(Parse("<</A " + Repeat("[", kDeep) + Repeat("]", kDeep) + "/B 1>>"), 0);
  EXPECT_EQ(Row(Row(First).NameId).NameText, "/B");
  EXPECT_EQ(Parse("<</A " + Repeat("(", kDeep) + Repeat(")", kDeep) + "/B 1>>"), 0);
  EXPECT_EQ(Row(Row(First).NameId).NameText, "/B");
  EXPECT_LT(ProcessorSeconds() - begin, 20);
}

TEST_F(DictionaryParserTest, DictionariesFarBeyondTheDeepestCostNoMoreThanTheDepthTimesTheirLength) {
  const double begin = ProcessorSeconds();
  EXPECT_EQ(Parse(Nested(1000000)), 0);
  EXPECT_EQ(DepthOfRows(), 100);
  EXPECT_EQ(State.NameEntryCount, 100);
  EXPECT_LT(ProcessorSeconds() - begin, 60);
}

}  // namespace
}  // namespace folioweld
