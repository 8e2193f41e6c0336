#include "prepare/token_text.h"

#include <gtest/gtest.h>

namespace folioweld {
namespace {

TEST(PreparedStrings, AreLiteralsWhereMostOfThemIsPlain) {
  EXPECT_EQ(StringToken("a (b) \\ c"), "(a \\(b\\) \\\\ c)");
}

TEST(PreparedStrings, EscapeWhatALineWouldLose) {
  EXPECT_EQ(StringToken(std::string("line end\n\r\t\f, then a NUL\0 and 7", 31)),
            "(line end\\012\\015\\011\\014, then a NUL\\000 and 7)");
}

TEST(PreparedStrings, AreHexadecimalWhereMostBytesNeedAnEscape) {
  EXPECT_EQ(StringToken("\xFE\xFF\x01z"), "<feff017a>");
}

TEST(PreparedStrings, MayBeEmpty) {
  EXPECT_EQ(StringToken(""), "()");
}

TEST(PreparedStrings, AreBrokenOverLinesWhenTheyAreLong) {
  const std::string token = StringToken(std::string(200'000, 'x'));
  ASSERT_EQ(token.front(), '<');
  std::size_t longest = 0;
  std::size_t digits = 0;
  for (std::size_t start = 0; start < token.size();) {
    const std::size_t end = std::min(token.find('\n', start), token.size());
    longest = std::max(longest, end - start);
    digits += end - start;
    start = end + 1;
  }
  EXPECT_LE(longest, 100u);
  EXPECT_EQ(digits, 400'002u);
}

TEST(PreparedNames, EscapeDelimitersAndWhatIsNoAscii) {
  EXPECT_EQ(NameToken("/a b/c#d\xE4"), "/a#20b#2fc#23d#e4");
}

TEST(PreparedNames, KeepANumberSignThatEscapesNothing) {
  EXPECT_EQ(NameToken(std::string("/a\0z", 4)), "/a#z");
}

}  // namespace
}  // namespace folioweld
