// The positioned reads of FileModule: lines and blocks.

#include <cerrno>
#include <gtest/gtest.h>
#include <random>
#include <string>

#include "engine/activity_log.h"
#include "engine/line_cursor.h"
#include "tests/engine/file_fixture.h"
#include "tests/support/recording_shell.h"

namespace folioweld {
namespace {

TEST(FindLineEnd, AgreesWithALookAtEveryCharacterOfRandomTexts) {
  std::mt19937 random(11);
  constexpr std::string_view kCharacters = "\r\nab \t";
  for (int round = 0; round < 20000; ++round) {
    std::string text(random() % 40, 'x');
    // Few line ends, so that long lines come up too.
    for (char& c : text) {
      if (random() % 4 == 0) c = kCharacters[random() % kCharacters.size()];
    }
    for (std::size_t index = 0; index <= text.size(); ++index) {
      ASSERT_EQ(FindLineEnd(text, index), kLineEndSet.Find(text, index)) << text;
    }
  }
}

using testing::FaultingSystem;

class FileLinesTest : public testing::FileFixture {
 protected:
  /// One buffer's worth, from a 1-based position.
  std::int32_t Chunk(std::int16_t number, std::int32_t position, std::int16_t size) {
    Line = "not emptied";
    LineStart = 999;
    return Files.ReadLineChunk(number, position, size, Line, LineStart, false);
  }

  std::int32_t Read(std::int16_t number, std::int32_t position, std::int16_t size, std::int16_t tries,
                    bool logging = false) {
    Line = "not emptied";
    return Files.ReadLineFromRandomFile(number, position, size, tries, Line, logging);
  }

  std::string Line;
  std::int32_t LineStart = 0;
};

using ReadLineChunkTest = FileLinesTest;
using ReadLineTest = FileLinesTest;
using ReadBlockTest = FileLinesTest;

TEST_F(ReadLineChunkTest, GivesTheLineWithoutItsLineEnd) {
  const std::int16_t number = OpenWith("first\rsecond\nthird\r\n");
  EXPECT_EQ(Chunk(number, 1, 100), 1);
  EXPECT_EQ(Line, "first");
  EXPECT_EQ(LineStart, 1);
  EXPECT_EQ(Chunk(number, 7, 100), 7);
  EXPECT_EQ(Line, "second");
  EXPECT_EQ(Chunk(number, 14, 100), 14);
  EXPECT_EQ(Line, "third");
}

TEST_F(ReadLineChunkTest, BlankLinesBeforeALineAreSkippedAndTheStartIsItsFirstCharacter) {
  const std::int16_t number = OpenWith("\r\n\n\r  text\nmore");
  EXPECT_EQ(Chunk(number, 1, 100), 5);
  EXPECT_EQ(Line, "  text");
  EXPECT_EQ(LineStart, 5);
}

TEST_F(ReadLineChunkTest, ALineOfExactlyTheBufferSizeIsNotComplete) {
  const std::int16_t number = OpenWith("12345678\nnext\n");
  EXPECT_EQ(Chunk(number, 1, 8), kNoLineEnd);
  EXPECT_EQ(Line, "12345678");
  EXPECT_EQ(LineStart, 1);
  EXPECT_EQ(Chunk(number, 1, 9), 1);
  EXPECT_EQ(Line, "12345678");
}

TEST_F(ReadLineChunkTest, TheLastLineWithoutALineEndIsTheRestOfTheFileAndNotComplete) {
  const std::int16_t number = OpenWith("first\nlast");
  EXPECT_EQ(Chunk(number, 7, 100), kNoLineEnd);
  EXPECT_EQ(Line, "last");
  EXPECT_EQ(LineStart, 7);
}

TEST_F(ReadLineChunkTest, ABufferOfLineEndsOnlyHasNoLineAndTheSearchGoesOnBehindIt) {
  const std::int16_t number = OpenWith("\n\n\n\nabc\n");
  EXPECT_EQ(Chunk(number, 1, 3), kNoLineEnd);
  EXPECT_EQ(Line, "");
  EXPECT_EQ(LineStart, 4);
}

TEST_F(ReadLineChunkTest, APositionOnePastTheEndIsBeyondTheEndWithAnEmptyLine) {
  const std::int16_t number = OpenWith("12345");
  EXPECT_EQ(Chunk(number, 5, 10), kNoLineEnd);
  EXPECT_EQ(Line, "5");
  EXPECT_EQ(Chunk(number, 6, 10), kBeyondEnd);
  EXPECT_EQ(Line, "");
  EXPECT_EQ(LineStart, -1);
}

TEST_F(ReadLineChunkTest, AnEmptyFileIsBeyondItsEndAtOnce) {
  const std::int16_t number = OpenWith("");
  EXPECT_EQ(Chunk(number, 1, 10), kBeyondEnd);
}

TEST_F(ReadLineChunkTest, BadArgumentsHaveTheirOwnCode) {
  const std::int16_t number = OpenWith("12345\n");
  EXPECT_EQ(Chunk(-1, 1, 10), kBadArguments);
  EXPECT_EQ(Line, "");
  EXPECT_EQ(LineStart, -1);
  EXPECT_EQ(Chunk(number, -1, 10), kBadArguments);
  EXPECT_EQ(Chunk(number, 1, 0), kBadArguments);
  EXPECT_EQ(Chunk(number, 1, -5), kBadArguments);
}

TEST_F(ReadLineChunkTest, EveryReasonHasItsNumber) {
  const std::int16_t number = OpenWith("12345");
  EXPECT_EQ(Chunk(number, 6, 10), -1) << "beyond the end";
  EXPECT_EQ(Chunk(number, 1, 10), -2) << "no line end";
  EXPECT_EQ(Chunk(number, 1, 0), -3) << "bad arguments";
  EXPECT_EQ(Chunk(number + 1, 1, 10), -4) << "no length";
  EXPECT_EQ(Chunk(number, 0, 10), -5) << "no such position";
  System.Decide = FaultingSystem::Failing("ReadFile", EIO);
  EXPECT_EQ(Chunk(OpenWith("12345"), 1, 10), -6) << "a read that failed";
}

TEST_F(ReadLineChunkTest, AFileThatIsNotOpenHasNoLength) {
  EXPECT_EQ(Chunk(0, 1, 10), kNoLength);
  EXPECT_EQ(Chunk(7, 1, 10), kNoLength);
  EXPECT_EQ(Line, "");
  EXPECT_EQ(LineStart, -1);
}

TEST_F(ReadLineChunkTest, PositionZeroCannotBeSoughtTo) {
  const std::int16_t number = OpenWith("12345\n");
  EXPECT_EQ(Chunk(number, 0, 10), kSeekFailed);
  EXPECT_EQ(Line, "");
  EXPECT_EQ(LineStart, -1);
}

TEST_F(ReadLineChunkTest, AFailedReadEmptiesTheLineAndKeepsTheSystemsError) {
  const std::int16_t number = OpenWith("12345\n");
  System.Decide = FaultingSystem::Failing("ReadFile", EIO);
  EXPECT_EQ(Chunk(number, 1, 10), kReadFailed);
  EXPECT_EQ(Line, "");
  EXPECT_EQ(LineStart, -1);
  EXPECT_EQ(Files.LastError().Code, EIO);
}

TEST_F(ReadLineChunkTest, AnOutputCannotBeRead) {
  const std::int16_t number = Files.OpenForBinaryWrite(Folder.Write("out", "12345\n"));
  ASSERT_GE(number, 1);
  EXPECT_EQ(Chunk(number, 1, 10), kReadFailed);
}

TEST_F(ReadLineChunkTest, EveryOtherByteBelongsToTheLine) {
  const std::string text("a\0\t\f \xFF%b", 8);
  const std::int16_t number = OpenWith(text + "\n");
  EXPECT_EQ(Chunk(number, 1, 100), 1);
  EXPECT_EQ(Line, text);
}

TEST_F(ReadLineTest, ALineOfExactlyTheBufferSizeIsCompletedFromTheNextBuffer) {
  const std::int16_t number = OpenWith("12345678\nnext\n");
  EXPECT_EQ(Read(number, 1, 8, 2), 1);
  EXPECT_EQ(Line, "12345678");
}

TEST_F(ReadLineTest, ALongLineIsPutTogetherFromManyBuffers) {
  const std::string text(95, 'x');
  const std::int16_t number = OpenWith("\n\n" + text + "\nnext\n");
  EXPECT_EQ(Read(number, 1, 10, 100), 3);
  EXPECT_EQ(Line, text);
}

TEST_F(ReadLineTest, ANextBufferThatBeginsWithALineEndEndsTheLineAtTheBorder) {
  const std::int16_t number = OpenWith("1234\r\n\nabcd\n");
  EXPECT_EQ(Read(number, 1, 4, 5), 1);
  EXPECT_EQ(Line, "1234");
}

TEST_F(ReadLineTest, BuffersOfLineEndsOnlyArePassedOver) {
  const std::int16_t number = OpenWith(std::string(25, '\n') + "text\nmore\n");
  EXPECT_EQ(Read(number, 1, 10, 5), 26);
  EXPECT_EQ(Line, "text");
}

TEST_F(ReadLineTest, NothingButLineEndsUpToTheEndIsBeyondTheEnd) {
  const std::int16_t number = OpenWith("a\n" + std::string(25, '\r'));
  EXPECT_EQ(Read(number, 2, 10, 5), kBeyondEnd);
  EXPECT_EQ(Line, "");
}

TEST_F(ReadLineTest, ALineThatIsIncompleteAfterTheLastTryGivesTheBytesGathered) {
  const std::int16_t number = OpenWith("\n1234567890abc\n");
  EXPECT_EQ(Read(number, 1, 4, 3), kNoLineEnd);
  EXPECT_EQ(Line, "1234567890a");
  EXPECT_EQ(Read(number, 2, 4, 1), kNoLineEnd);
  EXPECT_EQ(Line, "1234");
}

TEST_F(ReadLineTest, OnlyLineEndsAfterTheLastTryIsAnIncompleteEmptyLine) {
  const std::int16_t number = OpenWith(std::string(40, '\n') + "text\n");
  EXPECT_EQ(Read(number, 1, 10, 3), kNoLineEnd);
  EXPECT_EQ(Line, "");
}

TEST_F(ReadLineTest, ALineThatFillsTheLastBufferIsCompleteWhenItsLineEndFollows) {
  const std::int16_t number = OpenWith("123456789012\r4567890123456\n");
  EXPECT_EQ(Read(number, 1, 4, 3), 1);
  EXPECT_EQ(Line, "123456789012");
  EXPECT_EQ(Read(number, 14, 4, 3), kNoLineEnd) << "one byte more than the buffers hold";
}

TEST_F(ReadLineTest, ALineOfOneHundredThousandBytesIsReadWholeAndOneOfMoreIsNot) {
  const std::string longest(100000, 'x');
  const std::int16_t number = OpenWith(longest + "\n" + longest + "y\n");
  EXPECT_EQ(Read(number, 1, 1000, 100), 1);
  EXPECT_EQ(Line, longest);
  EXPECT_EQ(Read(number, 100002, 1000, 100), kNoLineEnd);
  EXPECT_EQ(Line, longest);
}

TEST_F(ReadLineTest, TheLastLineWithoutALineEndIsIncompleteInOneTryAndBeyondTheEndInMore) {
  const std::int16_t number = OpenWith("first\nlast");
  EXPECT_EQ(Read(number, 7, 16, 1), kNoLineEnd);
  EXPECT_EQ(Line, "last");
  EXPECT_EQ(Read(number, 7, 1000, 100), kBeyondEnd);
  EXPECT_EQ(Line, "");
  EXPECT_EQ(Read(number, 7, 4, 1), kNoLineEnd) << "the end of the file is no line end";
}

TEST_F(ReadLineTest, AnErrorInALaterBufferIsReturnedWithAnEmptyLine) {
  const std::int16_t number = OpenWith(std::string(9000, 'x') + "\n");
  long reads = 0;
  System.Decide = [&](const FaultingSystem::Call& call, std::size_t) {
    return call.Is("ReadFile") && ++reads > 1 ? FaultingSystem::Fault{EIO, 0} : FaultingSystem::Fault{};
  };
  EXPECT_EQ(Read(number, 1, 1000, 100), kReadFailed);
  EXPECT_EQ(Line, "");
}

TEST_F(ReadLineTest, ArgumentsThatAreBadGiveTheSameCodesAndAnEmptyLine) {
  const std::int16_t number = OpenWith("12345\n");
  EXPECT_EQ(Read(-1, 1, 10, 1), kBadArguments);
  EXPECT_EQ(Line, "");
  EXPECT_EQ(Read(number, -2, 10, 1), kBadArguments);
  EXPECT_EQ(Read(number, 1, 0, 1), kBadArguments);
  EXPECT_EQ(Read(number, 0, 10, 1), kSeekFailed);
  EXPECT_EQ(Read(number, 7, 10, 1), kBeyondEnd);
  EXPECT_EQ(Read(number + 1, 1, 10, 1), kNoLength);
  EXPECT_EQ(Line, "");
}

TEST_F(ReadLineTest, ReadingLineByLineAsksTheSystemSeldom) {
  std::string text;
  for (int i = 0; i < 20000; ++i) text += "0000000016 00000 n \n";
  const std::int16_t number = OpenWith(text);
  LineCursor cursor(Files, number, 1);
  long lines = 0;
  while (cursor.Next()) ++lines;
  EXPECT_EQ(lines, 20000);
  EXPECT_LT(CountOf("ReadFile"), 20) << "400,000 bytes";
}

class LineWarningsTest : public FileLinesTest {
 protected:
  void SetUp() override { Files.SetLog(&Log); }

  testing::RecordingShell Shell;
  ActivityLog Log{Shell};
};

TEST_F(LineWarningsTest, ACompletedLineOfSeveralTriesIsAWarningWithBothSizes) {
  const std::int16_t number = OpenWith("1234567890\n");
  EXPECT_EQ(Read(number, 1, 4, 9, true), 1);
  EXPECT_EQ(Log.LogText(),
            "[ReadLineFromRandomFile]=>*** Warning! *** Buffer size had to be increased from 4 to 12 "
            "*** Warning! <=\r\n");
}

TEST_F(LineWarningsTest, ALineThatStaysIncompleteIsAWarningWithTheTries) {
  const std::int16_t number = OpenWith("1234567890\n");
  EXPECT_EQ(Read(number, 1, 4, 2, true), kNoLineEnd);
  EXPECT_EQ(Log.LogText(),
            "[ReadLineFromRandomFile]=>***** WARNING!!! ***** Buffer size remained too small although I "
            "retried 2 times ***** WARNING!!! <=\r\n");
}

TEST_F(LineWarningsTest, OneTryOtherErrorsAndReadsWithoutLoggingSayNothing) {
  const std::int16_t number = OpenWith("1234567890\nlast");
  EXPECT_EQ(Read(number, 1, 20, 9, true), 1);
  EXPECT_EQ(Read(number, 1, 4, 1, true), kNoLineEnd);
  EXPECT_EQ(Read(number, 12, 4, 9, true), kBeyondEnd);
  EXPECT_EQ(Read(number, 1, 4, 9, false), 1);
  EXPECT_EQ(Log.LogIndex(), 0);
}

TEST_F(LineWarningsTest, ASizeThatDoesNotFitSixteenBitsIsNotWritten) {
  const std::int16_t number = OpenWith(std::string(32000, 'x') + "\n" + std::string(50000, 'y') + "\n");
  EXPECT_EQ(Read(number, 1, 4681, 7, true), 1) << "7 tries make 32767";
  EXPECT_EQ(Log.LogIndex(), 1);
  EXPECT_NE(Log.LogText().find("from 4681 to 32767"), std::string::npos);
  EXPECT_EQ(Read(number, 1, 16384, 2, true), 1) << "2 tries make 32768";
  EXPECT_EQ(Read(number, 32002, 16384, 2, true), kNoLineEnd);
  EXPECT_EQ(Log.LogIndex(), 1);
}

TEST_F(LineWarningsTest, NobodyHasToListen) {
  Files.SetLog(nullptr);
  const std::int16_t number = OpenWith("1234567890\n");
  EXPECT_EQ(Read(number, 1, 4, 9, true), 1);
}

TEST_F(ReadBlockTest, KeepsEveryByteValue) {
  std::string bytes;
  for (int i = 0; i < 256; ++i) bytes += static_cast<char>(i);
  const std::int16_t number = OpenWith(bytes);
  std::string block = "old";
  EXPECT_EQ(Files.ReadBlock(number, 1, 256, block), 256);
  EXPECT_EQ(block, bytes);
  EXPECT_EQ(Files.ReadBlock(number, 14, 1, block), 1);
  EXPECT_EQ(block, "\r");
}

TEST_F(ReadBlockTest, GivesFewerBytesAtTheEndOfTheFileOnly) {
  const std::int16_t number = OpenWith("0123456789");
  std::string block;
  EXPECT_EQ(Files.ReadBlock(number, 8, 3, block), 3);
  EXPECT_EQ(block, "789");
  EXPECT_EQ(Files.ReadBlock(number, 8, 4, block), 3);
  EXPECT_EQ(block, "789");
  EXPECT_EQ(Files.ReadBlock(number, 1, 32767, block), 10);
  EXPECT_EQ(block, "0123456789");
}

TEST_F(ReadBlockTest, FailsWithTheCodesOfTheLineReaderAndAnEmptyBlock) {
  const std::int16_t number = OpenWith("0123456789");
  std::string block = "old";
  EXPECT_EQ(Files.ReadBlock(number, 11, 1, block), kBeyondEnd);
  EXPECT_EQ(block, "");
  EXPECT_EQ(Files.ReadBlock(-1, 1, 1, block), kBadArguments);
  EXPECT_EQ(Files.ReadBlock(number, -1, 1, block), kBadArguments);
  EXPECT_EQ(Files.ReadBlock(number, 1, 0, block), kBadArguments);
  EXPECT_EQ(Files.ReadBlock(number, 0, 1, block), kSeekFailed);
  EXPECT_EQ(Files.ReadBlock(5, 1, 1, block), kNoLength);
  block = "old";
  System.Decide = FaultingSystem::Failing("ReadFile", EACCES);
  EXPECT_EQ(Files.ReadBlock(number, 1, 1, block), kReadFailed);
  EXPECT_EQ(block, "");
  EXPECT_EQ(Files.LastError().Code, EACCES);
}

TEST_F(ReadBlockTest, AFileThatBecameShorterWhileOpenIsAFailedRead) {
  const std::int16_t number = OpenWith(std::string(10000, 'x'));
  Folder.Write("in", "short");
  std::string block;
  EXPECT_EQ(Files.ReadBlock(number, 5000, 10, block), kReadFailed);
  EXPECT_EQ(Files.LastError().Code, EIO);
}

TEST_F(ReadBlockTest, ShortAndInterruptedReadsAreGoneOnWith) {
  const std::string text = "The quick brown fox jumps over the lazy dog.";
  const std::int16_t number = OpenWith(text);
  System.Decide = [](const FaultingSystem::Call& call, std::size_t index) {
    if (call.Name != "ReadFile") return FaultingSystem::Fault{};
    return index % 2 == 0 ? FaultingSystem::Fault{EINTR, 0} : FaultingSystem::Fault{0, 1000};
  };
  std::string block;
  EXPECT_EQ(Files.ReadBlock(number, 5, 30, block), 30);
  EXPECT_EQ(block, text.substr(4, 30));
}

TEST(LineCursorTest, TellsWhereAndWhyItStopped) {
  const testing::TempFolder folder;
  FaultingSystem system;
  FileModule files(system);
  const std::int16_t number =
      files.OpenForBinaryRead(folder.Write("in", "\nfirst\n\r\n second \r" + std::string(300001, 'x')));
  LineCursor cursor(files, number, 1);
  ASSERT_TRUE(cursor.Next());
  EXPECT_EQ(cursor.Line, "first");
  EXPECT_EQ(cursor.Offset(), 1);
  ASSERT_TRUE(cursor.Next());
  EXPECT_EQ(cursor.Line, " second ");
  EXPECT_EQ(cursor.Offset(), 9);
  EXPECT_FALSE(cursor.Next());
  EXPECT_EQ(cursor.Offset(), 18);
  EXPECT_EQ(cursor.Problem(), "a line is longer than 100000 bytes or has no end");
  LineCursor behind(files, number, 400000);
  EXPECT_FALSE(behind.Next());
  EXPECT_EQ(behind.Problem(), "the file ends here");
  system.Decide = FaultingSystem::Failing("ReadFile", EIO);
  LineCursor broken(files, files.OpenForBinaryRead(folder.File("in")), 1);
  EXPECT_FALSE(broken.Next());
  EXPECT_EQ(broken.Problem(), "the file cannot be read: Input/output error");
}

}  // namespace
}  // namespace folioweld
