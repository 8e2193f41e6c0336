// PdfBuilder::CopyStreamBytes: stream data from an input into the output.

#include <algorithm>
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

  /// Copies all of the data from behind other bytes: as many as stand before it in the output, so that the
  /// system can copy it page by page, or another number.
  void ExpectCopied(const std::string& data, const std::string& before = "seven..") {
    const std::int16_t input = OpenInput(before + data + "xyz");
    const std::string expected = "stream\n" + data + "endstream\r\n";
    EXPECT_EQ(Copy(input, static_cast<std::int32_t>(before.size()), static_cast<std::int32_t>(data.size())),
              static_cast<std::int32_t>(expected.size()));
    EXPECT_EQ(position_, static_cast<std::int32_t>(expected.size()));
    EXPECT_TRUE(Written() == expected);
  }

  [[nodiscard]] long CountOf(const std::string& name) const {
    return std::count_if(run_.System.Calls.begin(), run_.System.Calls.end(),
                         [&](const FaultingSystem::Call& call) { return call.Name == name; });
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

TEST_F(StreamCopyTest, AroundTheLengthFromWhichTheSystemCopies) {
  for (const std::size_t size : {65535U, 65536U, 65537U, 70000U}) {
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
    if (call.Name != "CopyFileRange" && call.Name != "ReadFile") return FaultingSystem::Fault{};
    ++calls;
    return calls % 2 == 0 ? FaultingSystem::Fault{EINTR, 0} : FaultingSystem::Fault{0, 60000};
  };
  ExpectCopied(Data(200000));
  EXPECT_GT(calls, 3);
}

TEST_F(StreamCopyTest, GoesThroughMemoryWhereTheSystemCannotCopy) {
  run_.System.Decide = FaultingSystem::Failing("CopyFileRange", EXDEV);
  ExpectCopied(Data(300000));
  EXPECT_EQ(CountOf("CopyFileRange"), 1) << "it is asked once and no more";
}

TEST_F(StreamCopyTest, GoesThroughMemoryWhereThePagesOfTheFilesDoNotMatch) {
  EXPECT_TRUE(run_.Files.Close(State().DocFileNumber(3)));
  for (const char* const before : {"", "abc", "eight..."}) {
    position_ = 0;
    State().DocFileNumber(3) = run_.Files.OpenForBinaryWrite(run_.OutputPath);
    ExpectCopied(Data(300000), before);
  }
  EXPECT_EQ(CountOf("CopyFileRange"), 0);
  ASSERT_GE(State().DocFileNumber(3) = run_.Files.OpenForBinaryWrite(run_.OutputPath), 1);
  position_ = 0;
  ExpectCopied(Data(300000));
  EXPECT_EQ(CountOf("CopyFileRange"), 1);
}

TEST_F(StreamCopyTest, LooksForACancelInLongStreams) {
  const std::int16_t input = OpenInput(Data(3 * 1024 * 1024));
  run_.Shell.OnYield = [&] { State().AbortRequested = true; };
  EXPECT_LT(Copy(input, 0, 3 * 1024 * 1024), 1);
}

TEST_F(StreamCopyTest, AFullDiskShowsAtTheLatestWhenTheOutputIsFlushed) {
  run_.System.Decide = [](const FaultingSystem::Call& call, std::size_t) {
    const bool writes = call.Name == "CopyFileRange" || call.Name == "WriteFile";
    return writes ? FaultingSystem::Fault{ENOSPC, 0} : FaultingSystem::Fault{};
  };
  const std::int16_t input = OpenInput(Data(100000));
  const bool copied = Copy(input, 0, 100000) >= 1;
  EXPECT_FALSE(copied && run_.Files.Flush(State().DocFileNumber(3)));
  EXPECT_EQ(run_.Files.LastError().Code, ENOSPC);
}

}  // namespace
}  // namespace folioweld::testing
