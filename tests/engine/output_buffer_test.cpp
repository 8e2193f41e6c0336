#include "engine/output_buffer.h"

#include <algorithm>
#include <cerrno>
#include <gtest/gtest.h>
#include <string>
#include <utility>

#include "tests/support/faulting_system.h"
#include "tests/support/temp_folder.h"

namespace folioweld {
namespace {

using testing::FaultingSystem;
using testing::ReadFile;

class OutputBufferTest : public ::testing::Test {
 protected:
  static constexpr std::int64_t kSourceSize = 10 * 1024 * 1024;

  OutputBufferTest() {
    // Every place differs from every other: numbered pieces of a length that divides no block.
    const std::string piece(4091, '.');
    while (static_cast<std::int64_t>(SourceBytes.size()) < kSourceSize) {
      SourceBytes += std::to_string(SourceBytes.size()) + piece;
    }
    SourceBytes.resize(static_cast<std::size_t>(kSourceSize));
    From = System.CreateFile(Folder.Write("in", SourceBytes), OpenMode::ReadExisting).Value();
    To = System.CreateFile(Folder.File("out"), OpenMode::WriteKeep).Value();
    System.Calls.clear();
  }
  ~OutputBufferTest() override {
    System.Decide = nullptr;
    EXPECT_FALSE(System.CloseHandle(From));
    EXPECT_FALSE(System.CloseHandle(To));
  }

  [[nodiscard]] std::string Part(std::int64_t offset, std::int64_t count) const {
    return SourceBytes.substr(static_cast<std::size_t>(offset), static_cast<std::size_t>(count));
  }

  void ExpectWritten(const std::string& expected) {
    const std::string written = ReadFile(Folder.File("out"));
    EXPECT_EQ(written.size(), expected.size());
    // Not EXPECT_EQ, which would print megabytes.
    EXPECT_TRUE(written == expected);
  }

  /// The source's bytes between two texts, as the file is to hold them.
  void WriteStream(OutputBuffer& buffer, InputBuffer& source, std::int64_t offset, std::int64_t count) {
    ASSERT_FALSE(buffer.Write(0, "stream\n"));
    ASSERT_FALSE(buffer.Copy(7, source, offset, count));
    ASSERT_FALSE(buffer.Write(7 + count, "endstream\r\n"));
    ASSERT_FALSE(buffer.Flush());
    ExpectWritten("stream\n" + Part(offset, count) + "endstream\r\n");
  }

  [[nodiscard]] long CountOf(const std::string& call) const {
    return std::count_if(System.Calls.begin(), System.Calls.end(),
                         [&](const FaultingSystem::Call& made) { return made.Name == call; });
  }

  testing::TempFolder Folder;
  FaultingSystem System;
  SpareFileBuffers Spare;
  std::string SourceBytes;
  WindowsAPI::Handle From = -1;
  WindowsAPI::Handle To = -1;
};

TEST_F(OutputBufferTest, GathersWritesThatFollowEachOther) {
  OutputBuffer buffer(System, To, Spare);
  EXPECT_FALSE(buffer.Write(0, "one "));
  EXPECT_FALSE(buffer.Write(4, "two "));
  EXPECT_FALSE(buffer.Write(8, "three"));
  EXPECT_EQ(CountOf("WriteFile"), 0);
  EXPECT_FALSE(buffer.Flush());
  EXPECT_EQ(CountOf("WriteFile"), 1);
  ExpectWritten("one two three");
  EXPECT_FALSE(buffer.Flush());
  EXPECT_EQ(CountOf("WriteFile"), 1) << "nothing is written twice";
}

TEST_F(OutputBufferTest, AJumpWritesWhatWasGathered) {
  OutputBuffer buffer(System, To, Spare);
  EXPECT_FALSE(buffer.Write(0, "0123456789"));
  EXPECT_FALSE(buffer.Write(3, "abc"));
  EXPECT_FALSE(buffer.Write(6, "d"));
  EXPECT_FALSE(buffer.Flush());
  ExpectWritten("012abcd789");
}

TEST_F(OutputBufferTest, WritesMoreThanItGathers) {
  OutputBuffer buffer(System, To, Spare);
  EXPECT_FALSE(buffer.Write(0, "a"));
  EXPECT_FALSE(buffer.Write(1, Part(0, 1000000)));
  EXPECT_FALSE(buffer.Write(1000001, "z"));
  EXPECT_FALSE(buffer.Flush());
  ExpectWritten("a" + Part(0, 1000000) + "z");
}

TEST_F(OutputBufferTest, ShortAndInterruptedWritesAreGoneOnWith) {
  System.Decide = [](const FaultingSystem::Call& call, std::size_t index) {
    if (call.Name != "WriteFile") return FaultingSystem::Fault{};
    return index % 3 == 0 ? FaultingSystem::Fault{EINTR, 0}
                          : FaultingSystem::Fault{0, index % 3 == 1 ? 70000U : 0U};
  };
  OutputBuffer buffer(System, To, Spare);
  for (std::int64_t offset = 0; offset < 1000000; offset += 1000) {
    ASSERT_FALSE(buffer.Write(offset, Part(offset, 1000)));
  }
  ASSERT_FALSE(buffer.Flush());
  ExpectWritten(Part(0, 1000000));
}

TEST_F(OutputBufferTest, AFailedWriteIsTold) {
  System.Decide = FaultingSystem::Failing("WriteFile", ENOSPC);
  OutputBuffer buffer(System, To, Spare);
  EXPECT_FALSE(buffer.Write(0, "text"));
  EXPECT_EQ(buffer.Write(100, "text").Code, ENOSPC);
  EXPECT_EQ(buffer.Write(4, Part(0, 300000)).Code, ENOSPC) << "more than it gathers";
  EXPECT_EQ(buffer.Flush().Code, ENOSPC);
}

/// A device that takes nothing and reports no error.
class FullSystem : public FaultingSystem {
 public:
  SystemResult<std::size_t> WriteFile(Handle, std::int64_t, const char*, std::size_t) override {
    return std::size_t{0};
  }
};

TEST_F(OutputBufferTest, AWriteOfNothingIsAnErrorAndNoEndlessLoop) {
  FullSystem full;
  OutputBuffer buffer(full, To, Spare);
  EXPECT_FALSE(buffer.Write(0, "text"));
  EXPECT_EQ(buffer.Flush().Code, EIO);
}

TEST_F(OutputBufferTest, BlocksThatFollowEachOtherAreReadStraightIntoLargeAlignedWrites) {
  constexpr std::int64_t kCount = 200000;
  for (const std::int64_t from : {0, 1, 4096}) {
    System.Calls.clear();
    ASSERT_FALSE(System.SetEndOfFile(To, 0));
    OutputBuffer buffer(System, To, Spare);
    InputBuffer source(System, From, kSourceSize, Spare);
    ASSERT_FALSE(buffer.Write(0, Part(7, 100000)));
    for (std::int64_t done = 0; done < kCount; done += 1000) {
      ASSERT_FALSE(buffer.Copy(100000 + done, source, from + done, 1000));
    }
    ASSERT_FALSE(buffer.Flush());
    EXPECT_EQ(CountOf("WriteFile"), 2) << "256 KiB and what is left";
    EXPECT_EQ(CountOf("ReadFile"), 2) << "each straight into its write";
    ExpectWritten(Part(7, 100000) + Part(from, kCount));
  }
}

TEST_F(OutputBufferTest, MostOfALongRangeIsCopiedFromFileToFile) {
  for (const std::int64_t from : {0, 1, 4096}) {
    System.Calls.clear();
    ASSERT_FALSE(System.SetEndOfFile(To, 0));
    OutputBuffer buffer(System, To, Spare);
    InputBuffer source(System, From, kSourceSize, Spare);
    ASSERT_FALSE(buffer.Write(0, "<"));
    for (std::int64_t done = 0; done < 1000000; done += 1000) {
      ASSERT_FALSE(buffer.Copy(1 + done, source, from + done, 1000));
    }
    ASSERT_FALSE(buffer.Write(1000001, ">"));
    ASSERT_FALSE(buffer.Flush());
    EXPECT_EQ(CountOf("CopyFileBytes"), 1) << "the whole blocks of 64 KiB";
    EXPECT_EQ(CountOf("WriteFile"), 2) << "what is before and after them";
    EXPECT_EQ(CountOf("ReadFile"), 2);
    ExpectWritten("<" + Part(from, 1000000) + ">");
  }
}

TEST_F(OutputBufferTest, ALongRangeIsWrittenInSteps) {
  OutputBuffer buffer(System, To, Spare);
  InputBuffer source(System, From, kSourceSize, Spare);
  for (std::int64_t done = 0; done < kSourceSize; done += 1000) {
    const std::int64_t count = std::min<std::int64_t>(1000, kSourceSize - done);
    ASSERT_FALSE(buffer.Copy(done, source, done, count));
    ASSERT_GE(System.GetFileInformationByHandle(To).Value().Size, done - 1024 * 1024 - 64 * 1024)
        << "at most one mebibyte waits, and what was gathered";
  }
  ASSERT_FALSE(buffer.Flush());
  ExpectWritten(SourceBytes);
}

TEST_F(OutputBufferTest, WhereFilesCannotBeCopiedALongRangeIsReadAndWritten) {
  System.Decide = FaultingSystem::Failing("CopyFileBytes", ENODEV);
  OutputBuffer buffer(System, To, Spare);
  InputBuffer source(System, From, kSourceSize, Spare);
  ASSERT_FALSE(buffer.Write(0, "<"));
  ASSERT_FALSE(buffer.Copy(1, source, 3, 1000000));
  ASSERT_FALSE(buffer.Write(1000001, ">"));
  ASSERT_FALSE(buffer.Flush());
  EXPECT_EQ(CountOf("CopyFileBytes"), 1) << "not tried for each block";
  ExpectWritten("<" + Part(3, 1000000) + ">");
}

TEST_F(OutputBufferTest, AnInterruptedCopyIsMadeAgainAndAShortOneGoneOnWith) {
  System.Decide = [this](const FaultingSystem::Call& call, std::size_t) {
    if (!call.Is("CopyFileBytes")) return FaultingSystem::Fault{};
    return CountOf("CopyFileBytes") == 1 ? FaultingSystem::Fault{EINTR, 0} : FaultingSystem::Fault{0, 700001};
  };
  OutputBuffer buffer(System, To, Spare);
  InputBuffer source(System, From, kSourceSize, Spare);
  WriteStream(buffer, source, 5, 1000000);
  EXPECT_EQ(CountOf("CopyFileBytes"), 2) << "what is left out is read and written";
}

TEST_F(OutputBufferTest, WhyALongRangeCannotBeCopiedIsTold) {
  for (const auto& [call, error] : {std::pair{"ReadFile", EIO}, std::pair{"WriteFile", ENOSPC}}) {
    System.Decide = [failing = call, code = error](const FaultingSystem::Call& made, std::size_t) {
      const bool fails = made.Is("CopyFileBytes") || made.Is(failing);
      return fails ? FaultingSystem::Fault{code, 0} : FaultingSystem::Fault{};
    };
    OutputBuffer buffer(System, To, Spare);
    InputBuffer source(System, From, kSourceSize, Spare);
    ASSERT_FALSE(buffer.Copy(0, source, 0, 1000000));
    EXPECT_EQ(buffer.Flush().Code, error) << call;
  }
}

TEST_F(OutputBufferTest, AFewBytesArriveWhetherTheyAreInMemoryOrNotOrInPart) {
  // The source's window holds its first 4096 bytes.
  for (const std::int64_t from : {std::int64_t{0}, std::int64_t{3584}, std::int64_t{3585}, std::int64_t{4000},
                                  std::int64_t{4095}, std::int64_t{4096}, std::int64_t{5000}}) {
    for (const std::int64_t count : {1, 50, 511, 512, 513}) {
      ASSERT_FALSE(System.SetEndOfFile(To, 0));
      OutputBuffer buffer(System, To, Spare);
      InputBuffer source(System, From, kSourceSize, Spare);
      ASSERT_TRUE(source.View(0, 1).Ok());
      WriteStream(buffer, source, from, count);
    }
  }
}

TEST_F(OutputBufferTest, AFewBytesThatAreInMemoryMayStandApartFromTheOthers) {
  OutputBuffer buffer(System, To, Spare);
  InputBuffer source(System, From, kSourceSize, Spare);
  ASSERT_TRUE(source.View(0, 1).Ok());
  ASSERT_FALSE(buffer.Copy(0, source, 0, 10));
  ASSERT_FALSE(buffer.Copy(20, source, 20, 10));
  ASSERT_FALSE(buffer.Write(10, Part(10, 10)));
  ASSERT_FALSE(buffer.Flush());
  ExpectWritten(Part(0, 30));
}

TEST_F(OutputBufferTest, RangesThatDoNotFollowEachOtherAreCopiedEachInItsPlace) {
  OutputBuffer buffer(System, To, Spare);
  InputBuffer source(System, From, kSourceSize, Spare);
  InputBuffer sameFile(System, From, kSourceSize, Spare);
  ASSERT_FALSE(buffer.Copy(0, source, 100, 10));
  ASSERT_FALSE(buffer.Copy(10, source, 500, 10)) << "a jump in the input";
  ASSERT_FALSE(buffer.Copy(20, sameFile, 510, 10)) << "another source";
  ASSERT_FALSE(buffer.Copy(40, sameFile, 520, 10)) << "a jump in the output";
  ASSERT_FALSE(buffer.Write(30, Part(0, 10)));
  ASSERT_FALSE(buffer.Flush());
  ExpectWritten(Part(100, 10) + Part(500, 10) + Part(510, 10) + Part(0, 10) + Part(520, 10));
}

TEST_F(OutputBufferTest, ARangeOfAnotherFileIsAnotherRangeWhereverItBegins) {
  const auto otherFile =
      System.CreateFile(Folder.Write("other", std::string(100, 'o')), OpenMode::ReadExisting);
  OutputBuffer buffer(System, To, Spare);
  InputBuffer source(System, From, kSourceSize, Spare);
  InputBuffer other(System, otherFile.Value(), 100, Spare);
  ASSERT_FALSE(buffer.Copy(0, source, 0, 50));
  ASSERT_FALSE(buffer.Copy(50, other, 50, 50));
  ASSERT_FALSE(buffer.Flush());
  ExpectWritten(Part(0, 50) + std::string(50, 'o'));
  EXPECT_FALSE(System.CloseHandle(otherFile.Value()));
}

TEST_F(OutputBufferTest, ShortAndInterruptedReadsDuringACopyAreGoneOnWith) {
  long reads = 0;
  System.Decide = [&](const FaultingSystem::Call& call, std::size_t) {
    if (call.Name != "ReadFile") return FaultingSystem::Fault{};
    return ++reads % 2 == 0 ? FaultingSystem::Fault{EINTR, 0} : FaultingSystem::Fault{0, 100000};
  };
  OutputBuffer buffer(System, To, Spare);
  InputBuffer source(System, From, kSourceSize, Spare);
  WriteStream(buffer, source, 5, 200000);
  EXPECT_GT(reads, 3);
}

TEST_F(OutputBufferTest, AFullDiskDuringACopyShows) {
  System.Decide = FaultingSystem::Failing("WriteFile", ENOSPC);
  OutputBuffer buffer(System, To, Spare);
  InputBuffer source(System, From, kSourceSize, Spare);
  ASSERT_FALSE(buffer.Write(0, "text"));
  ASSERT_FALSE(buffer.Copy(4, source, 0, 1000000));
  EXPECT_EQ(buffer.Flush().Code, ENOSPC);
  EXPECT_EQ(CountOf("WriteFile"), 1) << "the first one that fails is the last";
}

TEST_F(OutputBufferTest, AFailedReadDuringACopyShows) {
  System.Decide = FaultingSystem::Failing("ReadFile", EIO);
  OutputBuffer buffer(System, To, Spare);
  InputBuffer source(System, From, kSourceSize, Spare);
  ASSERT_FALSE(buffer.Copy(0, source, 0, 1000));
  EXPECT_EQ(buffer.Flush().Code, EIO);
  ASSERT_FALSE(buffer.Copy(0, source, 0, 1000));
  EXPECT_EQ(buffer.Write(1000, "x").Code, EIO);
}

TEST_F(OutputBufferTest, ASourceThatEndsEarlyShowsAsAFailedRead) {
  OutputBuffer buffer(System, To, Spare);
  InputBuffer source(System, From, kSourceSize + 100000, Spare);
  ASSERT_FALSE(buffer.Copy(0, source, kSourceSize - 10, 100000));
  EXPECT_EQ(buffer.Flush().Code, EIO);
}

}  // namespace
}  // namespace folioweld
