// Output pass #4: the file, byte by byte.

#include <cerrno>
#include <gtest/gtest.h>

#include "engine/pdf_builder.h"
#include "tests/support/hand_made_state.h"
#include "tests/support/merge_run.h"

namespace folioweld::testing {
namespace {

class OutputWriterTest : public ::testing::Test {
 protected:
  OutputWriterTest() {
    Make(4, 0);
    OpenOutput();
  }

  void OpenOutput() { State().DocFileNumber(3) = run_.Files.OpenForBinaryWrite(run_.OutputPath); }

  void Make(std::int32_t first, std::int32_t second) {
    MakeObjects(State(), first, second);
    State().DocHeader(3) = "%PDF-1.4\r";
    State().DocSecondLine(3) = "%abcd\r\n";
    State().OutputTrailerText = "trailer\r\n<<>>\r\nstartxref\r\n";
  }

  MergeState& State() { return run_.State; }

  std::int32_t Write() { return PdfBuilder(State(), run_.Files, run_.Shell).WriteOutputFile(); }

  std::string Written() {
    EXPECT_TRUE(run_.Files.Close(State().DocFileNumber(3)));
    State().DocFileNumber(3) = -1;
    return run_.Output();
  }

  void OpenInput(std::int16_t slot, const std::string& name, const std::string& bytes) {
    State().DocFileNumber(slot) = run_.Files.OpenForBinaryRead(run_.Folder.Write(name, bytes));
  }

  void PutStream(std::int32_t index, std::int32_t start, std::int32_t length) {
    PutObject(State(), index, kWithStream, {std::to_string(index) + " 0 obj\r", "<</Length 3>>\n"});
    State().Objects[index].StreamStart = start;
    State().Objects[index].StreamLength = length;
  }

  MergeRun run_;
};

TEST_F(OutputWriterTest, WritesTheFileByteForByte) {
  OpenInput(1, "in", "0123456789");
  PutDictionary(State(), 1, "<</A 1>>");
  PutStream(3, 2, 3);
  const std::string expected =
      "%PDF-1.4\r%abcd\r\n"
      "1 0 obj\r<</A 1>>\rendobj\r\n"
      "3 0 obj\r<</Length 3>>\rstream\n234endstream\r\nendobj\r\n"
      "xref\r\n0 4\r\n"
      "0000000000 65535 f\r\n"
      "0000000016 00000 n\r\n"
      "0000000000 65535 f\r\n"
      "0000000041 00000 n\r\n"
      "trailer\r\n<<>>\r\nstartxref\r\n92\r\n%%EOF\r\n";
  EXPECT_EQ(Write(), static_cast<std::int32_t>(expected.size()));
  EXPECT_EQ(Written(), expected);
}

TEST_F(OutputWriterTest, ShowsItsCaptionInTwoPiecesAndNoOutcome) {
  EXPECT_GT(Write(), 0);
  EXPECT_EQ(run_.Shell.Events,
            (std::vector<std::string>{"2|Pass #4 of building output file:",
                                      "2|Pass #4 of building output file: Write the output file"}));
}

TEST_F(OutputWriterTest, StartxrefIsTheOffsetOfTheXOfXref) {
  PutDictionary(State(), 1, "<</A 1>>");
  EXPECT_GT(Write(), 0);
  const std::string written = Written();
  const std::size_t offset = std::stoul(written.substr(written.find("startxref\r\n") + 11));
  EXPECT_EQ(written.substr(offset, 6), "xref\r\n");
}

TEST_F(OutputWriterTest, TrimsTheEndOfEveryLineAndEndsItWithOneCarriageReturn) {
  PutObject(State(), 1, kWithoutStream, {"1 0 obj \r\n", "  [ 1 ] \r \n", "", "(x)"});
  EXPECT_GT(Write(), 0);
  EXPECT_EQ(WrittenObject(Written(), 1), "1 0 obj\r  [ 1 ]\r\r(x)\rendobj");
}

TEST_F(OutputWriterTest, AnObjectAtOffset1234WithGenerationZero) {
  State().DocHeader(3) = "%PDF-" + std::string(1234 - 5 - 7 - 1, '1') + "\r";
  PutDictionary(State(), 1, "<<>>");
  EXPECT_GT(Write(), 0);
  EXPECT_EQ(State().Objects[1].OutOffset, 1234);
  EXPECT_EQ(WrittenEntry(Written(), 1), "0000001234 00000 n\r\n");
}

TEST_F(OutputWriterTest, WritesTheGenerationAndTheKeywordThatTheReaderSet) {
  PutDictionary(State(), 1, "<<>>");
  State().Objects[1].Generation = 7;
  State().Objects[1].EntryType = 'f';
  EXPECT_GT(Write(), 0);
  EXPECT_EQ(WrittenEntry(Written(), 1), "0000000016 00007 f\r\n");
}

TEST_F(OutputWriterTest, AnEmptySlotBecomesAFreeEntryAndIsNotWritten) {
  State().Objects[2].OutOffset = 99;
  EXPECT_GT(Write(), 0);
  EXPECT_EQ(State().Objects[2].OutOffset, 0);
  EXPECT_EQ(State().Objects[2].Generation, 65535);
  EXPECT_EQ(State().Objects[2].EntryType, 'f');
  const std::string written = Written();
  EXPECT_EQ(WrittenEntry(written, 2), "0000000000 65535 f\r\n");
  EXPECT_EQ(written.find("obj"), std::string::npos);
}

TEST_F(OutputWriterTest, AnUncopiedObjectBecomesAFreeEntry) {
  PutDictionary(State(), 1, "<<>>");
  State().Objects[1].ObjState = kListed;
  EXPECT_GT(Write(), 0);
  EXPECT_EQ(WrittenEntry(Written(), 1), "0000000000 65535 f\r\n");
}

TEST_F(OutputWriterTest, AnObjectWithoutAFirstOrLastLineBecomesAFreeEntry) {
  PutDictionary(State(), 1, "<<>>");
  PutDictionary(State(), 2, "<<>>");
  State().Objects[1].FirstLine = -1;
  State().Objects[2].LastLine = -1;
  EXPECT_GT(Write(), 0);
  const std::string written = Written();
  EXPECT_EQ(WrittenEntry(written, 1), "0000000000 65535 f\r\n");
  EXPECT_EQ(WrittenEntry(written, 2), "0000000000 65535 f\r\n");
}

TEST_F(OutputWriterTest, PlainNumbersAreWrittenLikeAnyObject) {
  PutNumber(State(), 1, "42");
  EXPECT_GT(Write(), 0);
  EXPECT_EQ(WrittenObject(Written(), 1), "1 0 obj\r42\rendobj");
}

TEST_F(OutputWriterTest, SlotZeroKeepsTheValuesThatTheReaderGaveIt) {
  State().Objects[0].OutOffset = 23;
  EXPECT_GT(Write(), 0);
  EXPECT_EQ(WrittenEntry(Written(), 0), "0000000023 65535 f\r\n");
}

TEST_F(OutputWriterTest, AnObjectThatClaimsSlotZeroIsNotWrittenAndItsEntryIsTheFreeHead) {
  PutDictionary(State(), 0, "<</Never 1>>");
  State().Objects[0].Generation = 0;
  State().Objects[0].EntryType = 'n';
  State().Objects[0].OutOffset = 500;
  EXPECT_GT(Write(), 0);
  const std::string written = Written();
  EXPECT_EQ(written.find("/Never"), std::string::npos);
  EXPECT_EQ(WrittenEntry(written, 0), "0000000000 65535 f\r\n");
}

TEST_F(OutputWriterTest, StreamsComeFromTheDocumentThatTheObjectBelongsTo) {
  Make(2, 2);
  OpenInput(1, "one", "first");
  OpenInput(2, "two", "second");
  PutStream(1, 0, 5);
  PutStream(3, 1, 5);
  EXPECT_GT(Write(), 0);
  const std::string written = Written();
  EXPECT_EQ(WrittenObject(written, 1), "1 0 obj\r<</Length 3>>\rstream\nfirstendstream\r\nendobj");
  EXPECT_EQ(WrittenObject(written, 3), "3 0 obj\r<</Length 3>>\rstream\necondendstream\r\nendobj");
}

TEST_F(OutputWriterTest, ADocumentSlotOutsideOneToThreeFails) {
  OpenInput(1, "one", "first");
  PutStream(1, 0, 5);
  for (const int slot : {0, 3, 4}) {
    State().Objects[1].DocNo = static_cast<std::uint8_t>(slot);
    EXPECT_EQ(Write(), -1);
    EXPECT_FALSE(State().Failure.Empty());
  }
}

TEST_F(OutputWriterTest, AStreamWhoseLengthIsUnknownFails) {
  OpenInput(1, "one", "first");
  PutStream(1, 0, -1);
  EXPECT_EQ(Write(), -1);
}

TEST_F(OutputWriterTest, AnEnormousStreamLengthFailsInsteadOfOverflowing) {
  OpenInput(1, "one", "first");
  PutStream(1, 2, 2147483646);
  EXPECT_EQ(Write(), -1);
  EXPECT_EQ(State().Failure.Rule, "a count or position is too large");
}

TEST_F(OutputWriterTest, AnInputThatCannotBeReadFailsAndSaysWhere) {
  Make(2, 2);
  OpenInput(2, "two", "second");
  PutStream(3, 1, 5);
  run_.System.Decide = FaultingSystem::Failing("ReadFile", EIO);
  EXPECT_EQ(Write(), -1);
  EXPECT_EQ(State().Failure.DocumentSlot, 2);
  EXPECT_EQ(State().Failure.ObjectNumber, 1) << "as numbered in that document";
}

TEST_F(OutputWriterTest, LineIndicesUpTo32767AreWritten) {
  State().ObjLines.Grow(40000);
  State().ObjLines[32766] = "1 0 obj";
  State().ObjLines[32767] = "<<>>";
  ObjectEntry& entry = State().Objects[1];
  entry.ObjState = kWithoutStream;
  entry.FirstLine = 32766;
  entry.LastLine = 32767;
  EXPECT_GT(Write(), 0);
  EXPECT_EQ(WrittenObject(Written(), 1), "1 0 obj\r<<>>\rendobj");
}

TEST_F(OutputWriterTest, AnObjectWithALineBeyondIndex32767Fails) {
  State().ObjLines.Grow(40000);
  ObjectEntry& entry = State().Objects[1];
  entry.ObjState = kWithoutStream;
  entry.FirstLine = 32767;
  entry.LastLine = 32768;
  EXPECT_EQ(Write(), -1);
  EXPECT_FALSE(State().Failure.Empty());
}

TEST_F(OutputWriterTest, ALineIndexOutsideTheTableFails) {
  PutDictionary(State(), 1, "<<>>");
  State().Objects[1].LastLine = 1000;
  EXPECT_EQ(Write(), -1);
}

TEST_F(OutputWriterTest, FailsWhenTheOutputIsNotOpen) {
  EXPECT_TRUE(run_.Files.Close(State().DocFileNumber(3)));
  State().DocFileNumber(3) = -1;
  EXPECT_EQ(Write(), -1);
  EXPECT_EQ(State().Failure.DocumentSlot, 3);
}

TEST_F(OutputWriterTest, AFullDiskFailsWithTheSystemsWords) {
  PutDictionary(State(), 1, "<<>>");
  run_.System.Decide = FaultingSystem::Failing("WriteFile", ENOSPC);
  EXPECT_EQ(Write(), -1);
  EXPECT_EQ(State().Failure.DocumentSlot, 3);
  EXPECT_EQ(State().Failure.Rule, "the output cannot be written: No space left on device");
}

TEST_F(OutputWriterTest, EverythingIsOnDiskWhenItReturns) {
  PutDictionary(State(), 1, "<<>>");
  const std::int32_t length = Write();
  EXPECT_EQ(run_.Output().size(), static_cast<std::size_t>(length)) << "before the file is closed";
}

TEST_F(OutputWriterTest, ShortAndInterruptedWritesAreCarriedOn) {
  PutDictionary(State(), 1, "<<>>");
  int calls = 0;
  run_.System.Decide = [&](const FaultingSystem::Call& call, std::size_t) {
    if (call.Name != "WriteFile") return FaultingSystem::Fault{};
    ++calls;
    return calls % 2 == 0 ? FaultingSystem::Fault{EINTR, 0} : FaultingSystem::Fault{0, 100000};
  };
  EXPECT_GT(Write(), 0);
  EXPECT_GT(calls, 100) << "one byte a write, each other call interrupted";
  EXPECT_EQ(WrittenObject(Written(), 1), "1 0 obj\r<<>>\rendobj");
}

TEST_F(OutputWriterTest, ACancelAtAnyYieldFailsThePass) {
  for (long yield = 1;; ++yield) {
    State().AbortRequested = false;
    run_.Shell.Yields = 0;
    run_.Shell.OnYield = [&] {
      if (run_.Shell.Yields == yield) State().AbortRequested = true;
    };
    const std::int32_t length = Write();
    if (!State().AbortRequested) {
      EXPECT_GT(length, 0);
      EXPECT_GE(yield, 2 * 4) << "twice a slot and twice before the table";
      return;
    }
    EXPECT_EQ(length, -1) << yield;
    EXPECT_EQ(State().Failure.Rule, kCancelled) << yield;
  }
}

TEST_F(OutputWriterTest, TheTableCoversEverySlotOfBothInputs) {
  Make(3, 2);
  EXPECT_GT(Write(), 0);
  const std::string written = Written();
  EXPECT_NE(written.find("xref\r\n0 5\r\n"), std::string::npos);
  EXPECT_EQ(CountOf(written, " 65535 f\r\n"), 5);
}

class WriteTextAtTest : public OutputWriterTest {
 protected:
  std::int32_t WriteText(const std::string& text, std::int32_t position) {
    return PdfBuilder(State(), run_.Files, run_.Shell).WriteTextAt(text, position);
  }
};

TEST_F(WriteTextAtTest, GivesThePositionBehindTheText) {
  EXPECT_EQ(WriteText("abc", 0), 3);
  EXPECT_EQ(WriteText("de", 3), 5);
  EXPECT_EQ(WriteText("", 5), 5);
  EXPECT_EQ(Written(), "abcde");
}

TEST_F(WriteTextAtTest, WritesAtAnyPosition) {
  EXPECT_EQ(WriteText("abcdef", 0), 6);
  EXPECT_EQ(WriteText("XY", 2), 4);
  EXPECT_EQ(Written(), "abXYef");
}

TEST_F(WriteTextAtTest, ShowsAMarkAfterEvery64MebibytesOfTheOutput) {
  constexpr std::int32_t kMark = 64 * 1024 * 1024;
  PdfBuilder builder(State(), run_.Files, run_.Shell);
  EXPECT_EQ(builder.WriteTextAt("x", kMark - 2), kMark - 1);
  EXPECT_EQ(run_.Shell.StatusText(2), "");
  EXPECT_EQ(builder.WriteTextAt("x", kMark - 1), kMark);
  EXPECT_EQ(run_.Shell.StatusText(2), "+");
  EXPECT_EQ(builder.WriteTextAt("x", 2 * kMark - 2), 2 * kMark - 1);
  EXPECT_EQ(run_.Shell.StatusText(2), "+");
  EXPECT_EQ(builder.WriteTextAt("xxx", 4 * kMark - 2), 4 * kMark + 1);
  EXPECT_EQ(run_.Shell.StatusText(2), "++++");
}

TEST_F(WriteTextAtTest, ShowsNoMarkForBytesThatCouldNotBeWritten) {
  State().DocFileNumber(3) = -1;
  EXPECT_EQ(PdfBuilder(State(), run_.Files, run_.Shell).WriteTextAt("x", 64 * 1024 * 1024), -1);
  EXPECT_EQ(run_.Shell.StatusText(2), "");
}

TEST_F(WriteTextAtTest, WritesOneByteForEveryCharacterWhateverItsValue) {
  std::string text;
  for (int i = 0; i < 2500; ++i) text += static_cast<char>(i);
  EXPECT_EQ(WriteText(text, 0), 2500);
  EXPECT_EQ(Written(), text);
}

TEST_F(WriteTextAtTest, FailsWhenTheOutputIsNotOpen) {
  State().DocFileNumber(3) = -1;
  EXPECT_EQ(WriteText("abc", 0), -1);
}

}  // namespace
}  // namespace folioweld::testing
