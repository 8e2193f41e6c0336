#include "engine/character_set.h"

#include <gtest/gtest.h>

#include "engine/lexer.h"

namespace folioweld {
namespace {

/// A set holds exactly the characters that it was made of, whatever the sign of a character.
void ExpectSame(const CharacterSet& set, std::string_view members) {
  for (int value = 0; value < 256; ++value) {
    const char c = static_cast<char>(static_cast<unsigned char>(value));
    EXPECT_EQ(set.Has(c), members.find(c) != std::string_view::npos) << value;
  }
}

TEST(CharacterSetTest, TheReadersSetsHoldTheirCharactersAndNoOthers) {
  ExpectSame(kWhiteSpaceSet, kWhiteSpace);
  ExpectSame(kDelimiterSet, kDelimiters);
  ExpectSame(kDelimiterOrEscapeSet, kDelimitersWithEscape);
  ExpectSame(kDigitSet, "0123456789");
  ExpectSame(kLineEndSet, kLineEnd);
  ExpectSame(kSpaceSet, " ");
}

TEST(CharacterSetTest, CharactersAbove127AreMembersLikeAnyOther) {
  ExpectSame(CharacterSet("\x80\xFF"), "\x80\xFF");
}

TEST(CharacterSetTest, FindGivesTheFirstMemberAtOrAfterTheIndex) {
  EXPECT_EQ(kWhiteSpaceSet.Find("ab c ", 0), 2U);
  EXPECT_EQ(kWhiteSpaceSet.Find("ab c ", 2), 2U);
  EXPECT_EQ(kWhiteSpaceSet.Find("ab c ", 3), 4U);
  EXPECT_EQ(kWhiteSpaceSet.Find("abc", 0), 3U);
  EXPECT_EQ(kWhiteSpaceSet.Find("", 0), 0U);
}

TEST(CharacterSetTest, SkipGivesTheFirstOtherCharacterAtOrAfterTheIndex) {
  EXPECT_EQ(kWhiteSpaceSet.Skip(" \r\nx", 0), 3U);
  EXPECT_EQ(kWhiteSpaceSet.Skip("x ", 0), 0U);
  EXPECT_EQ(kWhiteSpaceSet.Skip("x ", 1), 2U);
}

TEST(CharacterSetTest, TrimmingTakesMembersOffTheEndsOnly) {
  EXPECT_EQ(kWhiteSpaceSet.TrimRight(" a b \r\n"), " a b");
  EXPECT_EQ(kWhiteSpaceSet.Trim("\r\n a b "), "a b");
  EXPECT_EQ(kWhiteSpaceSet.Trim("a"), "a");
  EXPECT_EQ(kWhiteSpaceSet.Trim(""), "");
}

TEST(CharacterSetTest, WhatIsLeftOfATextOfMembersPointsToItsBeginning) {
  const std::string_view text = " \r\n";
  EXPECT_EQ(kWhiteSpaceSet.Trim(text).data(), text.data());
  EXPECT_TRUE(kWhiteSpaceSet.Trim(text).empty());
}

}  // namespace
}  // namespace folioweld
