// Pass #2 of an input: which objects are read, their text, their kind.

#include <cerrno>
#include <gtest/gtest.h>
#include <random>
#include <vector>

#include "tests/support/reader_setup.h"

namespace folioweld {
namespace {

using testing::DocumentBuilder;
using testing::ReaderSetup;

class ObjectScannerTest : public ::testing::Test, public ReaderSetup {
 protected:
  /// Scans a document with object 1 as written.
  bool ScanRaw(const std::string& bytes) {
    ResetMergeState(State);
    DocumentBuilder builder;
    builder.RawObject(1, bytes);
    return Scan(1, builder);
  }

  /// The same with the text between the header line and "endobj".
  bool ScanBody(const std::string& body) { return ScanRaw("1 0 obj\n" + body + "\nendobj\n"); }

  [[nodiscard]] const ObjectEntry& One() const { return State.Objects[1]; }
  [[nodiscard]] std::string_view LastLine() const { return State.ObjLines[One().LastLine]; }
};

// Slots.

TEST_F(ObjectScannerTest, OnlyTheTwoInputsAreScanned) {
  EXPECT_FALSE(Reader.ScanObjects(0));
  EXPECT_FALSE(Reader.ScanObjects(3));
  EXPECT_FALSE(Reader.ScanObjects(-1));
  EXPECT_EQ(Shell.Yields, 0);
  EXPECT_TRUE(State.Failure.Empty());
}

TEST_F(ObjectScannerTest, AnObjectNumberThatNoSectionListsFailsTheScan) {
  DocumentBuilder builder;
  builder.Object(1, "1").Object(2, "2");
  ASSERT_TRUE(Load(1, builder).SectionOk);
  State.DocObjectCount(1) = 4;
  ASSERT_TRUE(Reader.GrowObjectTable(1));
  EXPECT_FALSE(Reader.ScanObjects(1));
  EXPECT_EQ(State.Failure.DocumentSlot, 1);
  EXPECT_EQ(State.Failure.ObjectNumber, 3);
  EXPECT_EQ(State.Failure.FileOffset, -1);
  EXPECT_EQ(State.Failure.Rule, "no cross-reference section of the document lists the object");
  EXPECT_EQ(State.Objects[2].ObjState, kPlainNumber);
}

TEST_F(ObjectScannerTest, ATableShorterThanTheCountFailsTheScan) {
  DocumentBuilder builder;
  builder.Object(1, "1");
  ASSERT_TRUE(Load(1, builder).SectionOk);
  State.DocObjectCount(1) = 3;
  EXPECT_FALSE(Reader.ScanObjects(1));
  EXPECT_EQ(State.Failure.ObjectNumber, 2);
}

TEST_F(ObjectScannerTest, AFreeSlotIsNotRead) {
  DocumentBuilder builder;
  builder.Object(1, "1").Free(2, 65535, 999999).Object(3, "3");
  ASSERT_TRUE(Scan(1, builder));
  EXPECT_EQ(State.Objects[0].ObjState, kNoObject);
  EXPECT_EQ(State.Objects[2].ObjState, kNoObject);
  EXPECT_EQ(State.Objects[2].FirstLine, -1);
  EXPECT_EQ(State.Objects[3].ObjState, kPlainNumber);
}

TEST_F(ObjectScannerTest, AFreeEntryOfAnotherGenerationIsReadLikeAnyObject) {
  DocumentBuilder builder;
  builder.Object(1, "1").Free(2, 1, 0);
  EXPECT_FALSE(Scan(1, builder));
  EXPECT_EQ(State.Failure.ObjectNumber, 2);
  EXPECT_EQ(State.Failure.FileOffset, 0);
}

TEST_F(ObjectScannerTest, AnUsedEntryOfGeneration65535CountsAsFree) {
  DocumentBuilder builder;
  builder.RawObject(1, "anything", 65535);
  ASSERT_TRUE(Scan(1, builder));
  EXPECT_EQ(One().ObjState, kNoObject);
}

// The filler object.

TEST_F(ObjectScannerTest, TheSecondInputsFreeObject0BecomesTheFiller) {
  DocumentBuilder first;
  first.Object(1, "11");
  DocumentBuilder second;
  second.Object(1, "22");
  ASSERT_TRUE(Scan(1, first));
  ASSERT_TRUE(Scan(2, second));
  const ObjectEntry& filler = State.Objects[2];
  EXPECT_EQ(filler.ObjState, kWithoutStream);
  EXPECT_EQ(filler.ValueText, "19540716");
  EXPECT_EQ(filler.LastLine, filler.FirstLine + 1);
  EXPECT_EQ(State.ObjLines[filler.FirstLine], "0 0 obj\r");
  EXPECT_EQ(State.ObjLines[filler.LastLine], "19540716\r");
  EXPECT_EQ(filler.Generation, 0);
  EXPECT_EQ(filler.EntryType, 'n');
  EXPECT_EQ(filler.DocNo, 2);
  EXPECT_EQ(State.Objects[3].ValueText, "22");
}

TEST_F(ObjectScannerTest, OnlyTheFillerHasItsValue) {
  DocumentBuilder first;
  first.Object(1, "[1]");
  DocumentBuilder second;
  second.Object(1, "<</A 1>>").Free(2);
  ASSERT_TRUE(Scan(1, first));
  ASSERT_TRUE(Scan(2, second));
  for (const std::int32_t index : {0, 1, 3, 4}) EXPECT_EQ(State.Objects[index].ValueText, "") << index;
  EXPECT_EQ(State.Objects[4].ObjState, kNoObject);
}

TEST_F(ObjectScannerTest, TheScanOfTheSecondInputMarksWhereItsLinesBegin) {
  DocumentBuilder first;
  first.Object(1, "11").Object(2, "12");
  DocumentBuilder second;
  second.Object(1, "22");
  ASSERT_TRUE(Scan(1, first));
  EXPECT_EQ(State.ObjLineCount, 4);
  EXPECT_EQ(State.ObjLineLast, -1);
  ASSERT_TRUE(Scan(2, second));
  EXPECT_EQ(State.ObjLineLast, 4);
  EXPECT_EQ(State.ObjLineCount, 8);
}

TEST_F(ObjectScannerTest, AnUsedObject0IsReadLikeAnyObject) {
  DocumentBuilder first;
  first.Object(1, "11");
  DocumentBuilder second;
  second.Object(0, "7").Object(1, "22");
  ASSERT_TRUE(Scan(1, first));
  ASSERT_TRUE(Scan(2, second));
  EXPECT_EQ(State.Objects[2].ValueText, "7");
  EXPECT_EQ(State.Objects[2].ObjState, kPlainNumber);
}

// The text.

TEST_F(ObjectScannerTest, AnObjectGivesAHeaderLineAndABodyLine) {
  ASSERT_TRUE(ScanBody("<</A 1>>"));
  EXPECT_EQ(One().ObjState, kWithoutStream);
  EXPECT_EQ(One().LastLine, One().FirstLine + 1);
  EXPECT_EQ(State.ObjLines[One().FirstLine], "1 0 obj\r");
  EXPECT_EQ(LastLine(), "<</A 1>>\r");
}

TEST_F(ObjectScannerTest, TheHeaderIsWrittenAnewWithTheTablesGeneration) {
  DocumentBuilder builder;
  builder.RawObject(1, "  0001  00 obj\n[1]\nendobj\n", 3);
  ASSERT_TRUE(Scan(1, builder));
  EXPECT_EQ(State.ObjLines[One().FirstLine], "1 3 obj\r");
}

TEST_F(ObjectScannerTest, WhateverTheHeaderLooksLikeTheSameLineIsKept) {
  for (const char* const header :
       {"1 0 obj\n", "1 0 obj\r\n", "1 0 obj  \n", "1 0 obj ", "01 0 obj\n", "1 00000 obj\n", "1  0 obj\n",
        "1 0  obj\n", "1\n0\nobj\n", "1 0\nobj\n", "  1 0 obj\n", "1 0 obj\n\n \n", "0000000001 0 obj\n"}) {
    ASSERT_TRUE(ScanRaw(std::string(header) + "<</A 1>>\nendobj\n")) << header << State.Failure.Rule;
    EXPECT_EQ(State.ObjLines[One().FirstLine], "1 0 obj\r") << header;
    EXPECT_EQ(LastLine(), "<</A 1>>\r") << header;
  }
}

TEST_F(ObjectScannerTest, AHeaderMayTouchTheValue) {
  ASSERT_TRUE(ScanRaw("1 0 obj<</A 1>>endobj\n"));
  EXPECT_EQ(State.ObjLines[One().FirstLine], "1 0 obj\r");
  EXPECT_EQ(LastLine(), "<</A 1>>\r");
  ASSERT_TRUE(ScanRaw("1 0 obj[2]endobj\n"));
  EXPECT_EQ(LastLine(), "[2]");
}

TEST_F(ObjectScannerTest, WhatOnlyBeginsLikeTheHeaderFails) {
  for (const char* const header :
       {"1 0 objx\n", "1 0 ob\n", "1 0 obj2\n", "11 0 obj\n", "1 0obj\n", "10 obj\n", "1 0 R\n",
        "4294967297 0 obj\n", "00000000001 0 obj\n", "18446744073709551617 0 obj\n"}) {
    EXPECT_FALSE(ScanRaw(std::string(header) + "<</A 1>>\nendobj\n")) << header;
    EXPECT_EQ(State.Failure.Rule, "the object does not begin with its header \"1 generation obj\"") << header;
  }
}

TEST_F(ObjectScannerTest, LinesAreJoinedWithCarriageReturns) {
  ASSERT_TRUE(ScanBody("<<\n/A  1\r\n\r\n/B (x\ny)  \n>>"));
  EXPECT_EQ(LastLine(), "<<\r/A  1\r/B (x\ry)\r>>\r");
}

TEST_F(ObjectScannerTest, BlanksBeforeALineStayAndBlanksBehindItGo) {
  ASSERT_TRUE(ScanBody("<<\n   /A 1 \n   \n\t/B 2\t\n>>"));
  EXPECT_EQ(LastLine(), "<<\r   /A 1\r\t/B 2\t\r>>\r");
}

TEST_F(ObjectScannerTest, AnObjectMayStandOnOneLine) {
  ASSERT_TRUE(ScanRaw("1 0 obj<</A 1>>endobj\n"));
  EXPECT_EQ(LastLine(), "<</A 1>>\r");
  ASSERT_TRUE(ScanRaw("1 0 obj [1] endobj  \r\n"));
  EXPECT_EQ(One().ObjState, kWithoutStream);
}

TEST_F(ObjectScannerTest, BlankLinesBeforeTheHeaderAreSkipped) {
  ASSERT_TRUE(ScanRaw("\n \r\n  1 0 obj\n[1]\nendobj\n"));
}

TEST_F(ObjectScannerTest, TheClosingKeywordNeedsNoBlankBeforeIt) {
  ASSERT_TRUE(ScanBody("<</A 1>>\nxendobj"));
  EXPECT_EQ(LastLine(), "<</A 1>>\rx\r");
}

TEST_F(ObjectScannerTest, TheClosingKeywordMustEndItsLine) {
  // The rest of the line and everything up to the next closing keyword belong to the object.
  ASSERT_TRUE(ScanRaw("1 0 obj\n[1]\nendobj % end\n2 0 obj\n[2]\nendobj\n"));
  EXPECT_EQ(LastLine(), "[1]\rendobj % end\r2 0 obj\r[2]");
  ASSERT_TRUE(ScanRaw("1 0 obj\n[1]\nendobj\t\nendobj\n"));
  EXPECT_EQ(LastLine(), "[1]\rendobj\t");
}

TEST_F(ObjectScannerTest, EveryByteValueIsKept) {
  std::string bytes;
  for (int c = 0; c < 256; ++c) {
    if (c != '\r' && c != '\n') bytes += static_cast<char>(c);
  }
  ASSERT_TRUE(ScanBody("<</A (" + bytes + ")>>"));
  EXPECT_EQ(LastLine(), "<</A (" + bytes + ")>>\r");
}

TEST_F(ObjectScannerTest, MoreLinesThanTheTableHoldMakeItGrow) {
  DocumentBuilder builder;
  for (int number = 1; number <= 500; ++number) builder.Object(number, std::to_string(number));
  ASSERT_TRUE(Scan(1, builder));
  EXPECT_EQ(State.ObjLineCount, 1000);
  EXPECT_EQ(State.ObjLines[State.Objects[1].LastLine], "1\r");
  EXPECT_EQ(State.ObjLines[State.Objects[500].LastLine], "500\r");
}

TEST_F(ObjectScannerTest, ALineOf100000BytesIsReadAndOneMoreFails) {
  const std::string longest = "(" + std::string(99998, 'x') + ")";
  ASSERT_TRUE(ScanBody(longest));
  EXPECT_EQ(LastLine(), longest);
  EXPECT_FALSE(ScanBody("x" + longest));
  EXPECT_EQ(State.Failure.DocumentSlot, 1);
  EXPECT_EQ(State.Failure.ObjectNumber, 1);
  EXPECT_EQ(State.Failure.FileOffset, 15 + 8);
  EXPECT_EQ(State.Failure.Rule,
            "a line is longer than 100000 bytes or has no end before the object is complete");
}

TEST_F(ObjectScannerTest, AnObjectWithoutAnEndFails) {
  DocumentBuilder builder;
  builder.Raw("garbage\n").RawObject(1, "1 0 obj\n[1]\n");
  EXPECT_FALSE(Scan(1, builder));
  EXPECT_EQ(State.Failure.ObjectNumber, 1);
  EXPECT_EQ(State.Failure.Rule, "the file ends here before the object is complete");
}

TEST_F(ObjectScannerTest, AnOffsetBeyondTheEndFails) {
  DocumentBuilder builder;
  builder.Free(1, 0, 2147483646);
  EXPECT_FALSE(Scan(1, builder));
  EXPECT_EQ(State.Failure.ObjectNumber, 1);
  EXPECT_EQ(State.Failure.FileOffset, 2147483646);
}

TEST_F(ObjectScannerTest, AReadErrorIsToldInTheSystemsWords) {
  DocumentBuilder builder;
  builder.Object(1, "1").Raw(std::string(3000000, '\n')).Object(2, "2");
  ASSERT_TRUE(Load(1, builder).SectionOk);
  System.Decide = testing::FaultingSystem::Failing("ReadFile", EIO);
  EXPECT_FALSE(Reader.ScanObjects(1));
  EXPECT_EQ(State.Failure.ObjectNumber, 1);
  EXPECT_NE(State.Failure.Rule.find("nput/output error"), std::string::npos);
}

// The header.

TEST_F(ObjectScannerTest, AnotherObjectAtTheOffsetFails) {
  EXPECT_FALSE(ScanRaw("2 0 obj\n[1]\nendobj\n"));
  EXPECT_EQ(State.Failure.DocumentSlot, 1);
  EXPECT_EQ(State.Failure.ObjectNumber, 1);
  EXPECT_EQ(State.Failure.FileOffset, 15);
  EXPECT_EQ(State.Failure.Rule, "the object does not begin with its header \"1 generation obj\"");
}

TEST_F(ObjectScannerTest, WhatIsNoHeaderFails) {
  for (const char* bytes : {"[1]\nendobj\n", "1 0 [1]\nendobj\n", "1 obj\n[1]\nendobj\n",
                            "1 0 OBJ\n[1]\nendobj\n", "%c\n1 0 obj\n[1]\nendobj\n", "1 0 R\nendobj\n",
                            "\t1 0 obj\n[1]\nendobj\n", "endobj\n", "stream\n"}) {
    EXPECT_FALSE(ScanRaw(bytes)) << bytes;
    EXPECT_EQ(State.Failure.Rule, "the object does not begin with its header \"1 generation obj\"") << bytes;
  }
}

TEST(ParseObjectHeader, GivesThePositionBehindTheKeyword) {
  std::int32_t generation = -1;
  EXPECT_EQ(ParseObjectHeader("12 3 obj<<", 1, 12, generation), 9);
  EXPECT_EQ(generation, 3);
  EXPECT_EQ(ParseObjectHeader("xx 12 3 obj\r", 3, 12, generation), 12);
}

/// The scanner does not read headers that are written like this.
TEST(ParseObjectHeader, ReadsWhatTheOutputWillHoldWhateverFollows) {
  std::mt19937 random(12);
  const auto upTo = [&](std::int32_t highest) {
    return std::uniform_int_distribution<std::int32_t>(0, highest)(random);
  };
  for (int i = 0; i < 20000; ++i) {
    const std::int32_t number = upTo(i % 2 == 0 ? 20 : 70000);
    const std::int32_t listed = upTo(i % 3 == 0 ? 99999 : 2);
    const std::string header = HeaderLine(number, listed);
    std::string text = header;
    for (int rest = upTo(6); rest > 0; --rest) text += " \r\n0R/(<%obj\t"[upTo(13)];
    std::int32_t generation = -1;
    ASSERT_EQ(ParseObjectHeader(text, 1, number, generation), static_cast<std::int32_t>(header.size()))
        << text;
    ASSERT_EQ(generation, listed) << text;
  }
}

TEST(ParseObjectHeader, TheKeywordMayEndTheText) {
  std::int32_t generation = -1;
  EXPECT_EQ(ParseObjectHeader("12 0 obj", 1, 12, generation), 9);
}

TEST(ParseObjectHeader, IsBelowOneWhenTheHeaderDoesNotMatch) {
  std::int32_t generation = 7;
  EXPECT_LT(ParseObjectHeader("12 0 obj<<", 1, 13, generation), 1);
  EXPECT_LT(ParseObjectHeader("12 0 R", 1, 12, generation), 1);
  EXPECT_EQ(generation, -1);
  EXPECT_LT(ParseObjectHeader("", 1, 12, generation), 1);
}

// The kind.

TEST_F(ObjectScannerTest, ADictionarysFirstRowIsKept) {
  ASSERT_TRUE(ScanBody("<</A 1/B 2>>"));
  ASSERT_GE(One().ObjAux, 0);
  EXPECT_EQ(Row(One().ObjAux).NameText, "/A");
}

TEST_F(ObjectScannerTest, ADictionaryThatYieldsNoRowIsNoFailure) {
  for (const char* body : {"<<>>", "<</A 1>> %c", "<</A 1", "<<1>>"}) {
    ASSERT_TRUE(ScanBody(body)) << body;
    EXPECT_EQ(One().ObjAux, -1) << body;
    EXPECT_EQ(One().ObjState, kWithoutStream) << body;
    EXPECT_EQ(LastLine(), body + std::string("\r")) << body;
  }
}

TEST_F(ObjectScannerTest, APlainNumberIsKeptAsText) {
  ASSERT_TRUE(ScanBody("42"));
  EXPECT_EQ(One().ObjState, kPlainNumber);
  EXPECT_EQ(One().ValueText, "42");
  EXPECT_EQ(One().ObjAux, -1);
  EXPECT_EQ(LastLine(), "42\r");
}

TEST_F(ObjectScannerTest, ANumbersTextIsWrittenAnewInDecimal) {
  ASSERT_TRUE(ScanBody("0042"));
  EXPECT_EQ(One().ValueText, "42");
  EXPECT_EQ(LastLine(), "0042\r");
}

TEST_F(ObjectScannerTest, OnlyTheFirstWordMakesAPlainNumber) {
  ASSERT_TRUE(ScanBody("12 0 R"));
  EXPECT_EQ(One().ObjState, kPlainNumber);
  EXPECT_EQ(One().ValueText, "12");
}

TEST_F(ObjectScannerTest, AnyOtherPlainValueFails) {
  for (const char* body : {"true", "false", "null", "-1", "3.5", "2147483647", "42\n43", "42%c", "x", ""}) {
    EXPECT_FALSE(ScanBody(body)) << body;
    EXPECT_EQ(State.Failure.ObjectNumber, 1) << body;
    EXPECT_EQ(State.Failure.FileOffset, 15) << body;
    EXPECT_EQ(State.Failure.Rule,
              "the object's value is neither a plain number, a dictionary, an array, a string nor a name")
        << body;
  }
}

TEST_F(ObjectScannerTest, AValueThatBeginsWithADelimiterLosesItsLineEnd) {
  for (const char* body : {"[1 2]", "(text)", "/Name", "<ab>", "{x}", ">", "%c"}) {
    ASSERT_TRUE(ScanBody(body)) << body;
    EXPECT_EQ(LastLine(), body) << body;
    EXPECT_EQ(One().ObjState, kWithoutStream) << body;
    EXPECT_EQ(One().ValueText, "") << body;
    EXPECT_EQ(One().ObjAux, -1) << body;
  }
}

// The caption.

TEST_F(ObjectScannerTest, TheCaptionShowsProgressEvery100ObjectsAndAtTheEnd) {
  DocumentBuilder builder;
  for (int number = 1; number <= 250; ++number) builder.Object(number, "1");
  ASSERT_TRUE(Load(1, builder).SectionOk);
  std::vector<std::string> captions;
  Shell.SetStatusText(0, "Pass #2 ");
  Shell.OnStatus = [&](int line) { captions.push_back(Shell.StatusText(line)); };
  ASSERT_TRUE(Reader.ScanObjects(1));
  EXPECT_EQ(captions,
            (std::vector<std::string>{"Pass #2  0% (0)", "Pass #2 +++ 39% (100)", "Pass #2 +++++++ 79% (200)",
                                      "Pass #2 ++++++++++ 100% (250)"}));
}

TEST_F(ObjectScannerTest, TheSecondInputsCaptionShowsTheTableIndex) {
  DocumentBuilder first;
  first.Object(1, "1");
  DocumentBuilder second;
  second.Object(1, "1");
  ASSERT_TRUE(Scan(1, first));
  ASSERT_TRUE(Load(2, second).SectionOk);
  Shell.SetStatusText(1, "");
  ASSERT_TRUE(Reader.ScanObjects(2));
  EXPECT_EQ(Shell.StatusText(1), "++++++++++ 100% (3)");
}

}  // namespace
}  // namespace folioweld
