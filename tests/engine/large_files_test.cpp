// Files at and beyond the largest length that positions can name. They are sparse: nothing of that size is
// written.

#include <cerrno>
#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <unistd.h>

#include "engine/line_cursor.h"
#include "engine/merge_job.h"
#include "tests/engine/file_fixture.h"

namespace folioweld {
namespace {

constexpr std::int32_t kLongest = std::numeric_limits<std::int32_t>::max();

class LargeFilesTest : public testing::FileFixture {
 protected:
  /// A file of the length with the bytes at its end.
  std::string WriteSparse(std::int64_t length, const std::string& end, const std::string& start = "") {
    const std::string path = Folder.Write("large", start);
    EXPECT_EQ(::truncate(path.c_str(), length), 0);
    const auto file = System.CreateFile(path, OpenMode::WriteKeep);
    EXPECT_TRUE(file.Ok());
    const std::int64_t offset = length - static_cast<std::int64_t>(end.size());
    EXPECT_EQ(System.WriteFile(file.Value(), offset, end.data(), end.size()).Value(), end.size());
    EXPECT_FALSE(System.CloseHandle(file.Value()));
    return path;
  }

  std::int32_t Read(std::int16_t number, std::int32_t position, std::int16_t size, std::int16_t tries) {
    return Files.ReadLineFromRandomFile(number, position, size, tries, Line, false);
  }

  std::string Line;
};

TEST_F(LargeFilesTest, TheLongestFileCanBeReadUpToItsLastByte) {
  const std::int16_t number = Files.OpenForBinaryRead(WriteSparse(kLongest, "\nlast line\n"));
  ASSERT_GE(number, 1);
  EXPECT_EQ(Files.FileLength(number), kLongest);
  EXPECT_EQ(Read(number, kLongest - 10, 1000, 100), kLongest - 9);
  EXPECT_EQ(Line, "last line");
  std::string block;
  EXPECT_EQ(Files.ReadBlock(number, kLongest, 6, block), 1);
  EXPECT_EQ(block, "\n");
}

TEST_F(LargeFilesTest, NoPositionOverflowsBehindTheLineEndsOfTheLongestFile) {
  const std::int16_t number = Files.OpenForBinaryRead(WriteSparse(kLongest, "x\n\n\n"));
  ASSERT_GE(number, 1);
  std::int32_t lineStart = 0;
  EXPECT_EQ(Files.ReadLineChunk(number, kLongest - 2, 2, Line, lineStart, false), kNoLineEnd);
  EXPECT_EQ(lineStart, kLongest);
  for (const std::int16_t size : {std::int16_t{1}, std::int16_t{2}, std::int16_t{1000}}) {
    EXPECT_EQ(Read(number, kLongest - 2, size, 100), kBeyondEnd);
    EXPECT_EQ(Line, "");
  }
}

TEST_F(LargeFilesTest, NoPositionOverflowsBehindTheUnfinishedLastLineOfTheLongestFile) {
  const std::int16_t number = Files.OpenForBinaryRead(WriteSparse(kLongest, "\nlast line"));
  ASSERT_GE(number, 1);
  EXPECT_EQ(Read(number, kLongest - 8, 1000, 100), kBeyondEnd);
  EXPECT_EQ(Read(number, kLongest - 8, 1000, 1), kNoLineEnd);
  EXPECT_EQ(Line, "last line");
}

TEST_F(LargeFilesTest, WalkingTheLinesOfTheLongestFileEndsAtItsEnd) {
  const std::int16_t number = Files.OpenForBinaryRead(WriteSparse(kLongest, "\none\ntwo\n"));
  ASSERT_GE(number, 1);
  LineCursor cursor(Files, number, kLongest - 7);
  EXPECT_TRUE(cursor.Next());
  EXPECT_TRUE(cursor.Next());
  EXPECT_EQ(cursor.Line, "two");
  EXPECT_FALSE(cursor.Next());
  EXPECT_EQ(cursor.Problem(), "the file ends here");
}

TEST_F(LargeFilesTest, AFileThatIsLongerHasNoLength) {
  for (const std::int64_t length :
       {std::int64_t{kLongest} + 1, std::int64_t{3} << 30U, std::int64_t{5} << 30U}) {
    const std::int16_t number = Files.OpenForBinaryRead(WriteSparse(length, "end\n", "%PDF-1.4\n"));
    ASSERT_GE(number, 1);
    EXPECT_EQ(Files.FileLength(number), kNoLength);
    EXPECT_EQ(Read(number, 1, 16, 1), kNoLength);
    EXPECT_EQ(Line, "");
    std::string block;
    EXPECT_EQ(Files.ReadBlock(number, 1, 6, block), kNoLength);
    EXPECT_TRUE(Files.Close(number));
  }
}

TEST_F(LargeFilesTest, ADocumentOfTheLongestLengthIsAcceptedAndALongerOneIsRefused) {
  const std::string start = "%PDF-1.4\n%\xE2\xE3\xCF\xD3\nxref\n0 1\n";
  const std::string end = "\nstartxref\n15\n%%EOF\n";
  EXPECT_TRUE(IsThisDocumentApdf(Files, WriteSparse(kLongest, end, start)));
  PassFailure why;
  EXPECT_FALSE(IsThisDocumentApdf(Files, WriteSparse(std::int64_t{kLongest} + 1, end, start), &why));
  EXPECT_FALSE(why.Rule.empty());
}

TEST_F(LargeFilesTest, BlocksAreCopiedBeyondTwoGigabytesOfInput) {
  const std::int16_t input =
      Files.OpenForBinaryRead(WriteSparse((std::int64_t{1} << 31U) + 10, "0123456789"));
  const std::int16_t output = Files.OpenForBinaryWrite(Folder.File("out"));
  ASSERT_GE(input, 1);
  ASSERT_GE(output, 1);
  // The last offset that can be named lies before the end of this file.
  EXPECT_TRUE(Files.CopyBlock(input, kLongest, output, 0, 11));
  EXPECT_FALSE(Files.CopyBlock(input, kLongest, output, 11, 12)) << "one byte more than the file has";
  EXPECT_EQ(Files.LastError().Code, EIO);
  EXPECT_TRUE(Files.Close(output));
  EXPECT_EQ(testing::ReadFile(Folder.File("out")), std::string("\0"
                                                               "0123456789",
                                                               11));
}

TEST_F(LargeFilesTest, AnOutputIsWrittenUpToTheLastOffset) {
  const std::string path = Folder.File("out");
  const std::int16_t output = Files.OpenForBinaryWrite(path);
  ASSERT_GE(output, 1);
  EXPECT_TRUE(Files.WriteAt(output, "xyz", kLongest));
  EXPECT_TRUE(Files.Close(output));
  EXPECT_EQ(System.GetFileAttributes(path).Value().Size, std::int64_t{kLongest} + 3);
  EXPECT_TRUE(Files.SetFileSize(path, kLongest));
  EXPECT_EQ(System.GetFileAttributes(path).Value().Size, kLongest);
}

}  // namespace
}  // namespace folioweld
