// Streams as the object scanner finds them: where the data begins and how long it is.

#include <gtest/gtest.h>

#include "tests/support/processor_time.h"
#include "tests/support/reader_setup.h"

namespace folioweld {
namespace {

using testing::DocumentBuilder;
using testing::ProcessorSeconds;
using testing::ReaderSetup;
using testing::Repeat;

class StreamScannerTest : public ::testing::Test, public ReaderSetup {
 protected:
  bool ScanRaw(const std::string& bytes) {
    ResetMergeState(State);
    DocumentBuilder builder;
    builder.RawObject(1, bytes);
    const bool ok = Scan(1, builder);
    Offset = static_cast<std::int32_t>(builder.OffsetOf(1));
    return ok;
  }

  bool ScanDictionary(const std::string& entries) {
    return ScanRaw("1 0 obj\n<<" + entries + ">>\nstream\nDATA\nendstream\nendobj\n");
  }

  bool ScanLength(const std::string& value) { return ScanDictionary("/Length " + value); }

  void ExpectRefused(const std::string& entries, const std::string& rule) {
    EXPECT_FALSE(ScanDictionary(entries)) << entries;
    EXPECT_EQ(State.Failure.DocumentSlot, 1) << entries;
    EXPECT_EQ(State.Failure.ObjectNumber, 1) << entries;
    EXPECT_GE(State.Failure.FileOffset, Offset) << entries;
    EXPECT_EQ(State.Failure.Rule, rule) << entries;
  }

  [[nodiscard]] const ObjectEntry& One() const { return State.Objects[1]; }

  std::int32_t Offset = 0;
};

const std::string kNoLength = "the stream's dictionary has no /Length";
const std::string kNoNumber = "the stream's /Length is no number";
const std::string kWrongLineEnd =
    "\"stream\" is followed by neither a line feed nor a carriage return and a line feed";

// Objects within each other.

TEST_F(StreamScannerTest, WhereObjectsShareTheirTextItIsKeptAndParsedOnce) {
  DocumentBuilder builder;
  builder.RawObject(1, "1 0 obj\n<<\n").RawObject(2, "2 0 obj\n<<\n");
  const std::string rest = "/Rest(" + std::string(10000, 'x') + ")";
  builder.RawObject(3, "3 0 obj\n<<" + rest + "/Length%\n 4>>\nstream\nDATA\nendstream\nendobj\n");
  ASSERT_TRUE(Scan(1, builder));
  const std::string_view whole = State.ObjLines[State.Objects[1].LastLine];
  EXPECT_GE(State.Objects[1].ObjAux, 0);
  for (const int number : {2, 3}) {
    const ObjectEntry& object = State.Objects[number];
    EXPECT_EQ(object.StreamLength, 4);
    EXPECT_EQ(object.ObjAux, -1) << "the texts are longer than the file";
    const std::string_view text = State.ObjLines[object.LastLine];
    EXPECT_EQ(text.data() + text.size(), whole.data() + whole.size());
  }
}

// The data's beginning.

TEST_F(StreamScannerTest, DataBeginsBehindALineFeed) {
  const std::string before = "1 0 obj\n<</Length 4>>\n";
  ASSERT_TRUE(ScanRaw(before + "stream\nDATA\nendstream\nendobj\n"));
  EXPECT_EQ(One().ObjState, kWithStream);
  EXPECT_EQ(One().StreamStart, Offset + static_cast<std::int32_t>(before.size()) + 7);
  EXPECT_EQ(One().StreamLength, 4);
}

TEST_F(StreamScannerTest, DataBeginsBehindCarriageReturnAndLineFeed) {
  const std::string before = "1 0 obj\n<</Length 4>>\n";
  ASSERT_TRUE(ScanRaw(before + "stream\r\nDATA\nendstream\nendobj\n"));
  EXPECT_EQ(One().StreamStart, Offset + static_cast<std::int32_t>(before.size()) + 8);
}

TEST_F(StreamScannerTest, OnlyOneLineEndIsSkipped) {
  const std::string before = "1 0 obj\n<</Length 4>>\n";
  ASSERT_TRUE(ScanRaw(before + "stream\n\r\n\r\nendstream\nendobj\n"));
  EXPECT_EQ(One().StreamStart, Offset + static_cast<std::int32_t>(before.size()) + 7);
}

TEST_F(StreamScannerTest, ACarriageReturnAloneIsRefused) {
  EXPECT_FALSE(ScanRaw("1 0 obj\n<</Length 4>>\nstream\rDATA\nendstream\nendobj\n"));
  EXPECT_EQ(State.Failure.ObjectNumber, 1);
  EXPECT_EQ(State.Failure.FileOffset, Offset + 22);
  EXPECT_EQ(State.Failure.Rule, kWrongLineEnd);
}

TEST_F(StreamScannerTest, ABlankBehindTheKeywordIsRefused) {
  EXPECT_FALSE(ScanRaw("1 0 obj\n<</Length 4>>\nstream \nDATA\nendstream\nendobj\n"));
  EXPECT_EQ(State.Failure.Rule, kWrongLineEnd);
}

TEST_F(StreamScannerTest, TheFileMayEndBehindTheKeywordsLineFeed) {
  Open(1, "1 0 obj\n<</Length 0>>stream\n");
  State.DocObjectCount(1) = 2;
  ASSERT_TRUE(Reader.GrowObjectTable(1));
  State.Objects[0].ObjState = kListed;
  State.Objects[0].Generation = 65535;
  State.Objects[1].ObjState = kListed;
  State.Objects[1].Generation = 0;
  State.Objects[1].OutOffset = 0;
  EXPECT_TRUE(Reader.ScanObjects(1)) << State.Failure.Rule;
  EXPECT_EQ(One().StreamStart, 28);

  State.Objects[0].ObjState = kListed;
  State.Objects[1].ObjState = kListed;
  Open(1, "1 0 obj\n<</Length 0>>stream\r");
  EXPECT_FALSE(Reader.ScanObjects(1));
  EXPECT_EQ(State.Failure.Rule, kWrongLineEnd);
}

TEST_F(StreamScannerTest, TheKeywordMayStandOnTheDictionarysLine) {
  ASSERT_TRUE(ScanRaw("1 0 obj<</Length 4>>stream\nDATA\nendstream\nendobj\n"));
  EXPECT_EQ(One().StreamStart, Offset + 27);
  EXPECT_EQ(State.ObjLines[One().LastLine], "<</Length 4>>\n");
}

TEST_F(StreamScannerTest, TheLastKeywordOfTheLineCounts) {
  ASSERT_TRUE(ScanRaw("1 0 obj\n<</Kind/stream/Length 4>>stream\nDATA\nendstream\nendobj\n"));
  EXPECT_EQ(One().StreamStart, Offset + 40);
}

TEST_F(StreamScannerTest, TheBodyLineEndsWithALineFeed) {
  ASSERT_TRUE(ScanDictionary("/Length 4"));
  EXPECT_EQ(State.ObjLines[One().FirstLine], "1 0 obj\r");
  EXPECT_EQ(State.ObjLines[One().LastLine], "<</Length 4>>\n");
}

TEST_F(StreamScannerTest, AKeywordThatEndsALineOfTheDictionaryEndsTheObject) {
  EXPECT_FALSE(ScanRaw("1 0 obj\n<</Length 4/A(the end of a stream\n)>>\nstream\nDATA\nendstream\nendobj\n"));
  EXPECT_EQ(State.Failure.Rule, kNoLength);
}

TEST_F(StreamScannerTest, StreamDataIsNeverTakenForText) {
  DocumentBuilder builder;
  builder.Stream(1, "", "endobj\n2 0 obj\nstream\n").Object(2, "5");
  ASSERT_TRUE(Scan(1, builder));
  EXPECT_EQ(State.Objects[1].StreamLength, 22);
  EXPECT_EQ(State.Objects[2].ValueText, "5");
}

// The length.

TEST_F(StreamScannerTest, ADirectLengthIsTaken) {
  ASSERT_TRUE(ScanLength("4"));
  EXPECT_EQ(One().StreamLength, 4);
  EXPECT_EQ(One().LengthRefNumber, -1);
  EXPECT_EQ(State.MissingLengthCount, 0);
}

TEST_F(StreamScannerTest, ALengthOfZeroIsANumber) {
  ASSERT_TRUE(ScanLength("0"));
  EXPECT_EQ(One().StreamLength, 0);
}

TEST_F(StreamScannerTest, AReferenceLeavesTheLengthMissing) {
  ASSERT_TRUE(ScanLength("5 0 R"));
  EXPECT_EQ(One().StreamLength, -1);
  EXPECT_EQ(One().LengthRefNumber, 5);
  EXPECT_EQ(One().LengthRefGeneration, 0);
  ASSERT_EQ(State.MissingLengthCount, 1);
  const MissingLength& missing = State.MissingLengths[0];
  EXPECT_EQ(missing.StreamObjIndex, 1);
  EXPECT_EQ(missing.LineIndex, One().LastLine);
  EXPECT_EQ(missing.LengthObjIndex, 5);
  EXPECT_EQ(missing.LengthObjNumber, 5);
  EXPECT_EQ(missing.LengthObjGeneration, 0);
  EXPECT_EQ(missing.MissingDocNo, 1);
}

TEST_F(StreamScannerTest, AReferencesGenerationIsTaken) {
  ASSERT_TRUE(ScanLength("5   17  R"));
  EXPECT_EQ(One().LengthRefGeneration, 17);
  EXPECT_EQ(State.MissingLengths[0].LengthObjGeneration, 17);
}

TEST_F(StreamScannerTest, AReferenceInTheSecondInputPointsBehindTheFirstOnesObjects) {
  DocumentBuilder first;
  first.Object(1, "1").Object(2, "2");
  DocumentBuilder second;
  second.Stream(1, "", "DATA", "2 0 R").Object(2, "4");
  ASSERT_TRUE(Scan(1, first));
  ASSERT_TRUE(Scan(2, second));
  const MissingLength& missing = State.MissingLengths[0];
  EXPECT_EQ(missing.StreamObjIndex, 4);
  EXPECT_EQ(missing.LengthObjIndex, 5);
  EXPECT_EQ(missing.LengthObjNumber, 2);
  EXPECT_EQ(missing.MissingDocNo, 2);
  EXPECT_EQ(State.Objects[4].LengthRefNumber, 2);
}

TEST_F(StreamScannerTest, ManyMissingLengthsMakeTheirTableGrow) {
  DocumentBuilder builder;
  for (int number = 1; number <= 100; ++number) builder.Stream(number, "", "DATA", "101 0 R");
  builder.Object(101, "4");
  ASSERT_TRUE(Scan(1, builder));
  EXPECT_EQ(State.MissingLengthCount, 100);
  for (std::int32_t row = 0; row < 100; ++row) EXPECT_EQ(State.MissingLengths[row].StreamObjIndex, row + 1);
}

TEST_F(StreamScannerTest, AReferenceWhoseIndexOverflowsFailsWithItsObject) {
  DocumentBuilder first;
  first.Object(1, "1");
  DocumentBuilder second;
  second.Stream(1, "", "DATA", "2147483646 0 R");
  ASSERT_TRUE(Scan(1, first));
  EXPECT_FALSE(Scan(2, second));
  EXPECT_EQ(State.Failure.DocumentSlot, 2);
  EXPECT_EQ(State.Failure.ObjectNumber, 1);
  EXPECT_EQ(State.Failure.Rule, "a count or position is too large");
}

TEST_F(StreamScannerTest, TheWholeKeyIsCompared) {
  ExpectRefused("/Length1 4/L 4/length 4/DL 4", kNoLength);
  ASSERT_TRUE(ScanDictionary("/Length1 9/Length 4/Lengths 8"));
  EXPECT_EQ(One().StreamLength, 4);
}

TEST_F(StreamScannerTest, OfTwoLengthsTheFirstCounts) {
  ASSERT_TRUE(ScanDictionary("/Length 4/Length 5"));
  EXPECT_EQ(One().StreamLength, 4);
  ExpectRefused("/Length x/Length 4", kNoNumber);
}

TEST_F(StreamScannerTest, ALengthInANestedDictionaryDoesNotCount) {
  ExpectRefused("/DecodeParms<</Length 4>>", kNoLength);
  ASSERT_TRUE(ScanDictionary("/DecodeParms<</Length 9>>/Length 4"));
  EXPECT_EQ(One().StreamLength, 4);
}

TEST_F(StreamScannerTest, ALengthInAStringOrCommentDoesNotCount) {
  ExpectRefused("/A(/Length 4)", kNoLength);
  ExpectRefused("/A 1 %/Length 4\n", kNoLength);
}

TEST_F(StreamScannerTest, AStreamWithoutALengthFails) {
  ExpectRefused("", kNoLength);
  ExpectRefused("/Filter/FlateDecode", kNoLength);
}

TEST_F(StreamScannerTest, ADictionaryThatIsNotClosedFails) {
  EXPECT_FALSE(ScanRaw("1 0 obj\n<</Length 4\nstream\nDATA\nendstream\nendobj\n"));
  EXPECT_EQ(State.Failure.Rule, kNoLength);
}

TEST_F(StreamScannerTest, AnArrayWithAStreamFails) {
  EXPECT_FALSE(ScanRaw("1 0 obj\n[/Length 4]\nstream\nDATA\nendstream\nendobj\n"));
  EXPECT_EQ(State.Failure.Rule, kNoLength);
}

TEST_F(StreamScannerTest, ALengthThatIsNoNumberFails) {
  for (const char* value : {"x", "-4", "4.0", "(4)", "[4]", "2147483647", "5R", "R", ""}) {
    ExpectRefused(std::string("/Length ") + value, kNoNumber);
  }
}

TEST_F(StreamScannerTest, AReferenceSpreadOverLinesIsRefused) {
  ExpectRefused("/Length 5\n0 R", kNoNumber);
}

TEST_F(StreamScannerTest, ACommentBehindTheLengthIsNoPartOfIt) {
  ASSERT_TRUE(ScanDictionary("/Length 4 % bytes\n"));
  EXPECT_EQ(One().StreamLength, 4);
  ASSERT_TRUE(ScanDictionary("/Length % bytes R\n 4"));
  EXPECT_EQ(One().StreamLength, 4);
}

// Worst cases.

TEST_F(StreamScannerTest, SeveralObjectsOnOneLineThatAreTooLongTogetherAreToldAsThat) {
  constexpr int kObjects = 1300;
  DocumentBuilder builder;
  for (int number = 1; number <= kObjects; ++number) {
    builder.RawObject(number, std::to_string(number) + " 0 obj[" + std::string(50, ' ') + "]endobj ");
  }
  builder.Raw("\n");
  EXPECT_FALSE(Scan(1, builder));
  EXPECT_EQ(
      State.Failure.Rule,
      "several objects stand on one line, which are read to its end one after the other; each has to end "
      "its line");
}

TEST_F(StreamScannerTest, ObjectsThatRunIntoEachOtherAreRefusedQuickly) {
  // No object ends where the next one begins: read to their ends they would be the square of the file.
  constexpr int kObjects = 20000;
  DocumentBuilder builder;
  for (int number = 1; number <= kObjects; ++number) {
    builder.RawObject(number, std::to_string(number) + " 0 obj\n[" + std::string(80, 'x') + "]\n");
  }
  builder.Raw("endobj\n");
  const double begin = ProcessorSeconds();
  EXPECT_FALSE(Scan(1, builder));
  EXPECT_LT(ProcessorSeconds() - begin, 20);
  EXPECT_EQ(State.Failure.Rule, "the objects of the document run into each other");
  EXPECT_GT(State.Failure.ObjectNumber, 1);
  EXPECT_EQ(State.Failure.FileOffset, builder.OffsetOf(State.Failure.ObjectNumber));
}

TEST_F(StreamScannerTest, AFewObjectsMayRunIntoEachOther) {
  DocumentBuilder builder;
  for (int number = 1; number <= 50; ++number) {
    builder.RawObject(number, std::to_string(number) + " 0 obj\n[" + std::string(900, 'x') + "]\n");
  }
  builder.Raw("endobj\n");
  EXPECT_TRUE(Scan(1, builder));
}

TEST_F(StreamScannerTest, AnObjectOfAMillionLinesIsReadQuickly) {
  const double begin = ProcessorSeconds();
  ASSERT_TRUE(ScanRaw("1 0 obj\n<</A [\n" + Repeat("[ ( < <<\n) > >> ]\n", 500000) + "]>>\nendobj\n"));
  EXPECT_LT(ProcessorSeconds() - begin, 20);
  EXPECT_EQ(One().ObjState, kWithoutStream);
}

TEST_F(StreamScannerTest, AnObjectOfManyBlankLinesIsReadQuickly) {
  const double begin = ProcessorSeconds();
  ASSERT_TRUE(ScanRaw("1 0 obj\n[" + Repeat(" \n", 1000000) + "]\nendobj\n"));
  EXPECT_LT(ProcessorSeconds() - begin, 20);
  EXPECT_EQ(State.ObjLines[One().LastLine], "[\r]");
}

TEST_F(StreamScannerTest, TheMostObjectsAreScannedQuickly) {
  DocumentBuilder builder;
  for (int number = 1; number < 350000; ++number) builder.Object(number, "1");
  ASSERT_TRUE(Load(1, builder).SectionOk);
  const double begin = ProcessorSeconds();
  EXPECT_TRUE(Reader.ScanObjects(1));
  EXPECT_LT(ProcessorSeconds() - begin, 20);
}

}  // namespace
}  // namespace folioweld
