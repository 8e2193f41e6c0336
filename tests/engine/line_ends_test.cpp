#include "engine/line_ends.h"

#include <gtest/gtest.h>
#include <string>

namespace folioweld {
namespace {

TEST(LineEndsTest, ACarriageReturnAndALineFeedEndALineAndNothingElseDoes) {
  for (int byte = 0; byte < 256; ++byte) {
    const char c = static_cast<char>(byte);
    EXPECT_EQ(IsLineEnd(c), c == '\r' || c == '\n') << byte;
  }
}

/// Every byte value at every place of texts shorter and longer than what is looked at in one go.
TEST(LineEndsTest, TheFirstLineEndIsFoundWhateverStandsAroundIt) {
  for (const std::size_t size : {1U, 7U, 8U, 9U, 16U, 21U}) {
    for (int byte = 0; byte < 256; ++byte) {
      for (std::size_t at = 0; at < size; ++at) {
        std::string text(size, 'x');
        text[at] = static_cast<char>(byte);
        const bool ends = byte == '\r' || byte == '\n';
        ASSERT_EQ(FindLineEnd(text, 0), ends ? at : size) << byte << " at " << at << " of " << size;
        ASSERT_EQ(FindLineEnd(text, at), ends ? at : size) << byte << " at " << at << " of " << size;
        ASSERT_EQ(FindLineEnd(text, at + 1), size) << byte << " at " << at << " of " << size;
      }
    }
  }
}

TEST(LineEndsTest, ALineEndIsFoundBehindCharactersThatLookLikeOne) {
  for (const char* const before :
       {"\t", "\x0B", "\x0C", "\x01", "\x8D", "\x8A", "\xFF", "\t\x0C\x0B\t\x0C\x0B\t\x0C\x0B"}) {
    for (const char end : {'\r', '\n'}) {
      const std::string text = std::string(before) + "abc" + before + end + "\t\r\n";
      EXPECT_EQ(FindLineEnd(text, 0), text.size() - 4) << before;
    }
  }
  EXPECT_EQ(FindLineEnd(std::string("\0\0\0\0\0\0\0\0\0\n", 10), 0), 9U);
}

TEST(LineEndsTest, TheFirstOfSeveralLineEndsCounts) {
  EXPECT_EQ(FindLineEnd("ab\rcd\nef\r\n", 0), 2U);
  EXPECT_EQ(FindLineEnd("ab\rcd\nef\r\n", 3), 5U);
  EXPECT_EQ(FindLineEnd("", 0), 0U);
}

TEST(LineEndsTest, LineEndsAtTheBeginningAreSkipped) {
  EXPECT_EQ(SkipLineEnds(""), 0U);
  EXPECT_EQ(SkipLineEnds("a\r"), 0U);
  EXPECT_EQ(SkipLineEnds("\r\n\n\ra\r"), 4U);
  EXPECT_EQ(SkipLineEnds("\r\n"), 2U);
  EXPECT_EQ(SkipLineEnds("\t\r"), 0U);
}

}  // namespace
}  // namespace folioweld
