#include "engine/input_buffer.h"

#include <cerrno>
#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/faulting_system.h"
#include "tests/support/temp_folder.h"

namespace folioweld {
namespace {

using testing::FaultingSystem;

/// Bytes in which every place differs from every other.
std::string CountingBytes(std::size_t size) {
  std::string bytes;
  while (bytes.size() < size) bytes += std::to_string(bytes.size()) + " ";
  bytes.resize(size);
  return bytes;
}

class InputBufferTest : public ::testing::Test {
 protected:
  InputBufferTest() : Bytes(CountingBytes(2000000)) {
    File = System.CreateFile(Folder.Write("in", Bytes), OpenMode::ReadExisting).Value();
    System.Calls.clear();
  }
  ~InputBufferTest() override {
    System.Decide = nullptr;
    EXPECT_FALSE(System.CloseHandle(File));
  }

  void ExpectView(InputBuffer& buffer, std::int64_t offset, std::int64_t count) {
    const auto view = buffer.View(offset, count);
    ASSERT_TRUE(view.Ok()) << view.Error().Words();
    // Not EXPECT_EQ, which would print megabytes.
    EXPECT_TRUE(view.Value() == std::string_view(Bytes).substr(static_cast<std::size_t>(offset),
                                                               static_cast<std::size_t>(count)))
        << offset << " " << count;
  }

  [[nodiscard]] std::int64_t Length() const { return static_cast<std::int64_t>(Bytes.size()); }

  testing::TempFolder Folder;
  FaultingSystem System;
  SpareFileBuffers Spare;
  std::string Bytes;
  WindowsAPI::Handle File = -1;
};

TEST_F(InputBufferTest, GivesTheBytesOfTheFileAtAnyOffset) {
  InputBuffer buffer(System, File, Length(), Spare);
  for (const std::int64_t offset : {0, 1, 4095, 4096, 4097, 1000000, 999999, 3, 1999999, 1999000}) {
    for (const std::int64_t count : {1, 1000, 5000, 70000}) {
      if (offset + count <= Length()) ExpectView(buffer, offset, count);
    }
  }
}

TEST_F(InputBufferTest, NearReadsAskTheSystemOnce) {
  InputBuffer buffer(System, File, Length(), Spare);
  for (std::int64_t offset = 0; offset < 1000; offset += 10) ExpectView(buffer, offset, 10);
  for (std::int64_t offset = 990; offset >= 0; offset -= 10) ExpectView(buffer, offset, 10);
  EXPECT_EQ(System.Calls.size(), 1U);
}

TEST_F(InputBufferTest, ReadsThatFollowEachOtherWidenTheWindow) {
  InputBuffer buffer(System, File, Length(), Spare);
  for (std::int64_t offset = 0; offset + 1000 <= Length(); offset += 1000) ExpectView(buffer, offset, 1000);
  EXPECT_LT(System.Calls.size(), 40U) << "2,000,000 bytes";
}

TEST_F(InputBufferTest, JumpsReadLittle) {
  InputBuffer buffer(System, File, Length(), Spare);
  std::int64_t most = 0;
  System.Decide = [](const FaultingSystem::Call&, std::size_t) { return FaultingSystem::Fault{}; };
  for (std::int64_t i = 0; i < 100; ++i) {
    const std::int64_t offset = (i * 777777) % (Length() - 10);
    ExpectView(buffer, offset, 10);
    EXPECT_LE(buffer.AtHand(offset, 5000).size(), 1024U);
    const std::size_t calls = System.Calls.size();
    if (offset + 5000 < Length()) {
      ExpectView(buffer, offset + 4096, 1);
      if (System.Calls.size() == calls) ++most;
    }
  }
  EXPECT_EQ(most, 0);
}

TEST_F(InputBufferTest, ASmallFileIsReadAsAWholeOnceItWasReadFromAFewTimes) {
  const std::int64_t longest = 256 * 1024;
  InputBuffer buffer(System, File, longest, Spare);
  for (const std::int64_t offset : {0, 200000, 100000, 50000}) {
    ExpectView(buffer, offset, 10);
    EXPECT_LE(buffer.AtHand(offset, 5000).size(), 1024U) << "an acceptance test reads little";
  }
  for (std::int64_t offset = longest - 1000; offset >= 0; offset -= 1000) ExpectView(buffer, offset, 1000);
  EXPECT_EQ(System.Calls.size(), 5U);
}

TEST_F(InputBufferTest, OfALargerFileAsMuchAsIsNeededIsRead) {
  InputBuffer buffer(System, File, 256 * 1024 + 1, Spare);
  for (std::int64_t offset = 256 * 1024 - 1000; offset >= 0; offset -= 10000)
    ExpectView(buffer, offset, 1000);
  EXPECT_EQ(System.Calls.size(), 27U);
}

TEST_F(InputBufferTest, TheBufferOfAClosedFileServesTheNextOne) {
  const char* first = nullptr;
  for (int i = 0; i < 3; ++i) {
    InputBuffer buffer(System, File, Length(), Spare);
    const char* const bytes = buffer.View(0, 10).Value().data();
    if (i == 0) first = bytes;
    EXPECT_EQ(bytes, first);
  }
}

TEST_F(InputBufferTest, MoreBuffersThanAMergeUsesAreNotKept) {
  std::vector<FileBuffer> taken;
  for (int i = 0; i < 5; ++i) taken.push_back(Spare.Take());
  for (FileBuffer& buffer : taken) Spare.GiveBack(std::move(buffer));
  Spare.GiveBack(nullptr);
  for (int i = 0; i < 5; ++i) EXPECT_NE(Spare.Take(), nullptr);
}

TEST_F(InputBufferTest, NothingBehindTheLengthIsAskedFor) {
  InputBuffer buffer(System, File, 100, Spare);
  ExpectView(buffer, 90, 10);
  ExpectView(buffer, 0, 100);
  // A length that the file does not have would show as an early end.
  InputBuffer longer(System, File, Length() + 1, Spare);
  const auto view = longer.View(Length() - 5, 6);
  EXPECT_FALSE(view.Ok());
  EXPECT_EQ(view.Error().Code, EIO);
}

TEST_F(InputBufferTest, AFailedReadLosesNothingAndCanBeTriedAgain) {
  InputBuffer buffer(System, File, Length(), Spare);
  ExpectView(buffer, 0, 10);
  System.Decide = FaultingSystem::Failing("ReadFile", EIO);
  EXPECT_EQ(buffer.View(500000, 10).Error().Code, EIO);
  EXPECT_EQ(buffer.View(0, 10).Error().Code, EIO) << "the window is gone, not wrong";
  System.Decide = nullptr;
  ExpectView(buffer, 500000, 10);
  ExpectView(buffer, 0, 10);
}

TEST_F(InputBufferTest, ShortReadsAreGoneOnWith) {
  System.Decide = [](const FaultingSystem::Call&, std::size_t) { return FaultingSystem::Fault{0, 4000}; };
  InputBuffer buffer(System, File, Length(), Spare);
  ExpectView(buffer, 100, 1000);
  System.Decide = [](const FaultingSystem::Call&, std::size_t index) {
    return FaultingSystem::Fault{index % 3 == 0 ? 0 : EINTR, 500};
  };
  ExpectView(buffer, 300000, 60000);
}

TEST_F(InputBufferTest, ReadFullyReadsExactlyWhatIsAskedFor) {
  std::string bytes(12, '#');
  EXPECT_FALSE(ReadFully(System, File, 1000, bytes.data() + 1, 10));
  EXPECT_EQ(bytes, "#" + Bytes.substr(1000, 10) + "#");
  EXPECT_FALSE(ReadFully(System, File, 0, nullptr, 0));
  EXPECT_EQ(ReadFully(System, File, Length() - 3, bytes.data(), 4).Code, EIO) << "the end came early";
  System.Decide = FaultingSystem::Failing("ReadFile", EACCES);
  EXPECT_EQ(ReadFully(System, File, 0, bytes.data(), 4).Code, EACCES);
}

}  // namespace
}  // namespace folioweld
