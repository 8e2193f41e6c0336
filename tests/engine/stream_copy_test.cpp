// PdfBuilder::CopyStreamBytes: stream data from an input into the output.

#include <cerrno>
#include <gtest/gtest.h>

#include "engine/pdf_builder.h"
#include "tests/support/merge_run.h"

namespace folioweld::testing {
namespace {

/// Bytes of every value that do not repeat in step with any block.
std::string Data(std::size_t size) {
  std::string data(size, '\0');
  std::uint32_t value = 12345;
  for (char& byte : data) {
    value = value * 1103515245U + 12345U;
    byte = static_cast<char>(value >> 16U);
  }
  return data;
}

class StreamCopyTest : public ::testing::Test {
 protected:
  StreamCopyTest() { State().DocFileNumber(3) = run_.Files.OpenForBinaryWrite(run_.OutputPath); }

  MergeState& State() { return run_.State; }

  std::int16_t OpenInput(const std::string& bytes) {
    return run_.Files.OpenForBinaryRead(run_.Folder.Write("in", bytes));
  }

  std::int32_t Copy(std::int16_t input, std::int32_t start, std::int32_t length) {
    return PdfBuilder(State(), run_.Files, run_.Shell).CopyStreamBytes(input, start, length, position_);
  }

  std::string Written() {
    EXPECT_TRUE(run_.Files.Close(State().DocFileNumber(3)));
    return run_.Output();
  }

  /// Copies all of the data from between other bytes.
  void ExpectCopied(const std::string& data) {
    const std::int16_t input = OpenInput("abc" + data + "xyz");
    const std::string expected = "stream\n" + data + "endstream\r\n";
    EXPECT_EQ(Copy(input, 3, static_cast<std::int32_t>(data.size())),
              static_cast<std::int32_t>(expected.size()));
    EXPECT_EQ(position_, static_cast<std::int32_t>(expected.size()));
    EXPECT_TRUE(Written() == expected);
  }

  std::int32_t position_ = 0;
  MergeRun run_;
};

TEST_F(StreamCopyTest, AStreamOfLengthZeroIsTheTwoKeywords) {
  EXPECT_EQ(Copy(OpenInput("abc"), 3, 0), 18);
  EXPECT_EQ(position_, 18);
  EXPECT_EQ(Written(), "stream\nendstream\r\n");
}

TEST_F(StreamCopyTest, OneByte) {
  ExpectCopied("x");
}

TEST_F(StreamCopyTest, ABlockLess1) {
  ExpectCopied(Data(999));
}

TEST_F(StreamCopyTest, ExactlyOneBlockOf1000Bytes) {
  ExpectCopied(Data(1000));
}

TEST_F(StreamCopyTest, OneByteMoreThanABlock) {
  ExpectCopied(Data(1001));
}

TEST_F(StreamCopyTest, AroundTheLengthOfAWrite) {
  for (const std::size_t size : {262136U, 262137U, 262138U, 524281U}) {
    ExpectCopied(Data(size));
    position_ = 0;
    State().DocFileNumber(3) = run_.Files.OpenForBinaryWrite(run_.OutputPath);
  }
}

TEST_F(StreamCopyTest, SeveralMebibytes) {
  ExpectCopied(Data(9 * 1024 * 1024 + 17));
}

TEST_F(StreamCopyTest, LineEndsAndKeywordsInTheDataMeanNothing) {
  ExpectCopied("\r\n endstream\r\nendobj\r\n\nstream\n\r");
}

TEST_F(StreamCopyTest, GoesOnAtThePositionGiven) {
  const std::int16_t input = OpenInput("0123456789");
  PdfBuilder builder(State(), run_.Files, run_.Shell);
  position_ = builder.WriteTextAt("head ", 0);
  EXPECT_EQ(Copy(input, 4, 2), 25);
  EXPECT_EQ(Copy(input, 0, 1), 44);
  EXPECT_EQ(Written(), "head stream\n45endstream\r\nstream\n0endstream\r\n");
}

/// Counts the blocks by the looks at the user's wishes, of which every thousand has one before its last.
TEST_F(StreamCopyTest, DataGoesInBlocksOf1000Bytes) {
  const std::int16_t input = OpenInput(std::string(2'000'000, 'x'));
  const auto looks = [&](std::int32_t length) {
    run_.Shell.Yields = 0;
    EXPECT_GT(Copy(input, 0, length), 1);
    return run_.Shell.Yields;
  };
  const long one = looks(999'001);
  EXPECT_GT(one, 0);
  EXPECT_EQ(looks(999'000), 0);
  EXPECT_EQ(looks(1'999'000), one);
  EXPECT_EQ(looks(1'999'001), 2 * one);
}

TEST_F(StreamCopyTest, AMarkIsShownWithinALongStream) {
  constexpr std::int32_t kMark = 64 * 1024 * 1024;
  const std::int16_t input = OpenInput(std::string(3'000'000, 'x'));
  position_ = kMark - 1'500'000;
  std::vector<std::string> shown;
  run_.Shell.OnYield = [&] { shown.push_back(run_.Shell.StatusText(2)); };
  EXPECT_GT(Copy(input, 0, 3'000'000), 1);
  EXPECT_EQ(shown, (std::vector<std::string>{"", "", "+", "+", "+", "+"})) << "two yields a megabyte";
}

TEST_F(StreamCopyTest, ANegativeInputFails) {
  EXPECT_EQ(Copy(-1, 0, 3), -1);
  EXPECT_EQ(position_, 0);
  EXPECT_EQ(Written(), "") << "nothing is written for it";
}

TEST_F(StreamCopyTest, AnInputThatIsNotOpenFails) {
  EXPECT_LT(Copy(77, 0, 3), 1);
}

TEST_F(StreamCopyTest, ANegativeStartOrLengthFails) {
  const std::int16_t input = OpenInput("abc");
  EXPECT_LT(Copy(input, -1, 3), 1);
  EXPECT_LT(Copy(input, 0, -1), 1);
}

TEST_F(StreamCopyTest, DataBeyondTheEndOfTheInputFails) {
  const std::int16_t input = OpenInput("abc");
  EXPECT_LT(Copy(input, 1, 3), 1);
  EXPECT_LT(Copy(input, 2147483646, 2), 1);
}

TEST_F(StreamCopyTest, FailsWhenTheOutputIsNotOpen) {
  EXPECT_TRUE(run_.Files.Close(State().DocFileNumber(3)));
  State().DocFileNumber(3) = -1;
  EXPECT_LT(Copy(OpenInput("abc"), 0, 3), 1);
}

TEST_F(StreamCopyTest, RaisesAnErrorForAPositionThatDoesNotFit) {
  const std::int16_t input = OpenInput("abc");
  position_ = 100;
  EXPECT_THROW(Copy(input, 0, 2147483646), OverflowError);
}

TEST_F(StreamCopyTest, ShortAndInterruptedCopiesAreCarriedOn) {
  int calls = 0;
  run_.System.Decide = [&](const FaultingSystem::Call& call, std::size_t) {
    if (call.Name != "ReadFile") return FaultingSystem::Fault{};
    ++calls;
    return calls % 2 == 0 ? FaultingSystem::Fault{EINTR, 0} : FaultingSystem::Fault{0, 60000};
  };
  ExpectCopied(Data(200000));
  EXPECT_GT(calls, 3);
}

TEST_F(StreamCopyTest, LooksForACancelInLongStreams) {
  const std::int16_t input = OpenInput(Data(3 * 1024 * 1024));
  run_.Shell.OnYield = [&] { State().AbortRequested = true; };
  EXPECT_LT(Copy(input, 0, 3 * 1024 * 1024), 1);
}

TEST_F(StreamCopyTest, AFullDiskShowsAtTheLatestWhenTheOutputIsFlushed) {
  run_.System.Decide = FaultingSystem::Failing("WriteFile", ENOSPC);
  const std::int16_t input = OpenInput(Data(100000));
  const bool copied = Copy(input, 0, 100000) >= 1;
  EXPECT_FALSE(copied && run_.Files.Flush(State().DocFileNumber(3)));
  EXPECT_EQ(run_.Files.LastError().Code, ENOSPC);
}

}  // namespace
}  // namespace folioweld::testing
