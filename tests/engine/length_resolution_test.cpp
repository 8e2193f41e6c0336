// Output pass #1: stream lengths that were given as references.

#include <gtest/gtest.h>

#include "engine/pdf_builder.h"
#include "tests/support/hand_made_state.h"
#include "tests/support/merge_run.h"

namespace folioweld::testing {
namespace {

const std::string kPass1Label = "Pass #1 of building output file: get missing lengths and relocate objects";

class LengthResolutionTest : public ::testing::Test {
 protected:
  LengthResolutionTest() { MakeObjects(run_.State, 6, 5); }

  MergeState& State() { return run_.State; }

  void PutStream(std::int32_t index) {
    PutObject(State(), index, kWithStream, {"1 0 obj\r", "<</Length 9 0 R>>\n"});
  }

  /// A row of the table as the scanner makes it.
  void Miss(std::int32_t streamIndex, std::int32_t lengthIndex, std::int32_t number,
            std::int32_t generation = 0) {
    const std::int32_t row = State().MissingLengthCount++;
    State().MissingLengths.Grow(row);
    const std::int16_t slot = streamIndex >= State().ObjectsInDoc1 ? 2 : 1;
    State().MissingLengths[row] = {streamIndex, 0, lengthIndex, number, generation, slot};
  }

  [[nodiscard]] bool Build() { return PdfBuilder(State(), run_.Files, run_.Shell).BuildOutputPasses1And2(); }

  void ExpectFailure(std::int16_t slot, std::int32_t object) {
    EXPECT_FALSE(Build());
    EXPECT_EQ(run_.Status(2), kPass1Label) << "a failure leaves the line without an outcome";
    EXPECT_EQ(State().Failure.DocumentSlot, slot);
    EXPECT_EQ(State().Failure.ObjectNumber, object);
    EXPECT_FALSE(State().Failure.Empty());
  }

  MergeRun run_;
};

TEST_F(LengthResolutionTest, TakesTheValueOfTheNumberObjectThatTheReferenceNames) {
  PutStream(3);
  PutNumber(State(), 4, "1234");
  Miss(3, 4, 4);
  EXPECT_TRUE(Build());
  EXPECT_EQ(State().Objects[3].StreamLength, 1234);
}

TEST_F(LengthResolutionTest, LooksUpTheSecondInputsBeforeItsObjectsGetNewNumbers) {
  PutStream(8);
  PutNumber(State(), 9, "77");
  Miss(8, 9, 3);
  EXPECT_TRUE(Build());
  EXPECT_EQ(State().Objects[8].StreamLength, 77);
  EXPECT_EQ(State().Objects[9].ObjNumber, 9);
}

TEST_F(LengthResolutionTest, WithoutAnIndirectLengthShowsTheCountZeroWithTheSingularWord) {
  EXPECT_TRUE(Build());
  EXPECT_EQ(run_.Status(2), kPass1Label +
                                "   -> OK : the missing length of 0  object has been found\r\n"
                                "Pass #2 for output file: compute new object numbers   -> OK\r\n");
}

TEST_F(LengthResolutionTest, OneLengthShowsTheSingularWord) {
  PutStream(3);
  PutNumber(State(), 4, "0");
  Miss(3, 4, 4);
  EXPECT_TRUE(Build());
  EXPECT_EQ(State().Objects[3].StreamLength, 0);
  EXPECT_EQ(run_.Status(2), kPass1Label +
                                "   -> OK : the missing length of 1  object has been found\r\n"
                                "Pass #2 for output file: compute new object numbers   -> OK\r\n");
}

TEST_F(LengthResolutionTest, TwoLengthsShowThePluralWord) {
  PutStream(2);
  PutStream(3);
  PutNumber(State(), 4, "5");
  Miss(2, 4, 4);
  Miss(3, 4, 4);
  EXPECT_TRUE(Build());
  EXPECT_EQ(run_.Status(2), kPass1Label +
                                "   -> OK : the missing length of 2  objects has been found\r\n"
                                "Pass #2 for output file: compute new object numbers   -> OK\r\n");
}

TEST_F(LengthResolutionTest, TheCaptionComesInTwoPiecesBeforeAnythingElse) {
  EXPECT_TRUE(Build());
  ASSERT_GE(run_.Shell.Events.size(), 2U);
  EXPECT_EQ(run_.Shell.Events[0], "2|Pass #1 of building output file:");
  EXPECT_EQ(run_.Shell.Events[1], "2|" + kPass1Label);
}

TEST_F(LengthResolutionTest, TwoRowsForOneStreamFailAtTheSecond) {
  PutStream(3);
  PutNumber(State(), 4, "10");
  Miss(3, 4, 4);
  Miss(3, 4, 4);
  ExpectFailure(1, 3);
  EXPECT_EQ(State().Objects[3].StreamLength, 10) << "earlier rows keep what they set";
}

TEST_F(LengthResolutionTest, ALengthForAnObjectWithoutAStreamFails) {
  PutDictionary(State(), 3, "<<>>");
  PutNumber(State(), 4, "10");
  Miss(3, 4, 4);
  ExpectFailure(1, 3);
}

TEST_F(LengthResolutionTest, ALengthObjectWhoseTextIsNegativeFails) {
  PutStream(3);
  PutNumber(State(), 4, "-10");
  Miss(3, 4, 4);
  ExpectFailure(1, 3);
  EXPECT_EQ(State().Failure.Rule, "the stream's /Length refers to object 4, which is no number of 0 or more");
}

TEST_F(LengthResolutionTest, AnObjectThatIsNoPlainNumberFailsThePass) {
  PutStream(8);
  PutDictionary(State(), 9, "<</A 1>>");
  Miss(8, 9, 3);
  ExpectFailure(2, 2);
}

TEST_F(LengthResolutionTest, ATextThatOnlyBeginsWithANumberFails) {
  PutStream(3);
  PutNumber(State(), 4, "10 20");
  Miss(3, 4, 4);
  ExpectFailure(1, 3);
}

TEST_F(LengthResolutionTest, ALengthObjectWithAnotherNumberFails) {
  PutStream(3);
  PutNumber(State(), 4, "10");
  Miss(3, 4, 5);
  ExpectFailure(1, 3);
  EXPECT_EQ(State().Failure.Rule, "the stream's /Length refers to 5 0 R, which is another object");
}

TEST_F(LengthResolutionTest, ALengthObjectOfAnotherGenerationFails) {
  PutStream(3);
  PutNumber(State(), 4, "10");
  Miss(3, 4, 4, 1);
  ExpectFailure(1, 3);
}

TEST_F(LengthResolutionTest, AReferenceBeyondAllObjectsFails) {
  PutStream(8);
  Miss(8, 11, 5);
  ExpectFailure(2, 2);
  EXPECT_EQ(State().Failure.Rule, "the stream's /Length refers to object 5, which does not exist");
}

TEST_F(LengthResolutionTest, AStreamIndexOutsideTheTableFails) {
  PutNumber(State(), 4, "10");
  Miss(11, 4, 4);
  EXPECT_FALSE(Build());
  EXPECT_EQ(run_.Status(2), kPass1Label);
  EXPECT_FALSE(State().Failure.Empty());
}

TEST_F(LengthResolutionTest, AFailureLeavesTheSecondInputsNumbersAlone) {
  PutStream(3);
  Miss(3, 4, 4);
  ExpectFailure(1, 3);
  EXPECT_EQ(State().Objects[7].ObjNumber, 1);
}

TEST_F(LengthResolutionTest, AReferenceToTheSecondInputsFillerGivesItsNumber) {
  PutStream(8);
  PutNumber(State(), 6, "19540716");
  Miss(8, 6, 0);
  EXPECT_TRUE(Build());
  EXPECT_EQ(State().Objects[8].StreamLength, 19540716);
}

// Streams and the files that hold them.

class StreamBoundsTest : public LengthResolutionTest {
 protected:
  static constexpr std::int32_t kFileSize = 1024 * 1024;

  /// Opens a file of `kFileSize` bytes in both slots.
  StreamBoundsTest() {
    const std::string path = run_.Folder.Write("in", std::string(kFileSize, 'x'));
    for (const std::int16_t slot : {std::int16_t{1}, std::int16_t{2}}) {
      State().DocFileNumber(slot) = run_.Files.OpenForBinaryRead(path);
    }
  }

  void PutStreamAt(std::int32_t index, std::int32_t start, std::int32_t length) {
    PutStream(index);
    State().Objects[index].StreamStart = start;
    State().Objects[index].StreamLength = length;
  }
};

TEST_F(StreamBoundsTest, AStreamMayEndWhereItsFileEnds) {
  PutStreamAt(3, 10, kFileSize - 10);
  PutStreamAt(8, kFileSize, 0);
  EXPECT_TRUE(Build());
}

TEST_F(StreamBoundsTest, AStreamThatGoesBeyondItsFileFailsBeforeAnythingIsWritten) {
  PutStreamAt(3, 10, kFileSize - 9);
  ExpectFailure(1, 3);
  EXPECT_EQ(State().Failure.Rule, "the stream of 1048567 bytes goes beyond the end of the file");
  EXPECT_EQ(State().Failure.FileOffset, 10);
}

TEST_F(StreamBoundsTest, TheSecondInputsStreamsAreLookedAtToo) {
  PutStreamAt(8, kFileSize, 1);
  ExpectFailure(2, 2);
}

TEST_F(StreamBoundsTest, AnEnormousLengthDoesNotOverflow) {
  PutStreamAt(3, 10, 2147483646);
  ExpectFailure(1, 3);
}

TEST_F(StreamBoundsTest, StreamsThatClaimTheSameBytesAgainAndAgainFail) {
  // A file of 1 MiB may hold streams of 20 MiB together.
  for (const int first : {0, 100}) {
    MakeObjects(State(), 100, 100);
    for (std::int32_t i = 0; i < 20; ++i) PutStreamAt(first + i, 0, kFileSize);
    EXPECT_TRUE(Build());
    MakeObjects(State(), 100, 100);
    for (std::int32_t i = 0; i < 20; ++i) PutStreamAt(first + i, 0, kFileSize);
    PutStreamAt(first + 20, 0, 1);
    EXPECT_FALSE(Build());
    EXPECT_EQ(State().Failure.Rule, "the streams of the document run into each other");
    EXPECT_EQ(State().Failure.ObjectNumber, 20);
    EXPECT_EQ(State().Failure.DocumentSlot, first == 0 ? 1 : 2);
  }
}

}  // namespace
}  // namespace folioweld::testing
