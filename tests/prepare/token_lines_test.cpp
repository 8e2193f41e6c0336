#include "prepare/token_lines.h"

#include <gtest/gtest.h>

#include "prepare/not_prepared.h"

namespace folioweld {
namespace {

TEST(TokenLines, PutABlankBetweenTokensAndALineEndWhereALineGetsLong) {
  TokenLines lines;
  lines.Put(std::string(100, 'a'));
  lines.Put(std::string(19, 'b'));
  lines.Put("c");
  EXPECT_EQ(lines.Text(), std::string(100, 'a') + " " + std::string(19, 'b') + "\nc");
}

TEST(TokenLines, EndNoLineWithANameThatEndsLikeAKeyword) {
  for (const std::string name : {"/Bitstream", "/endobj"}) {
    TokenLines lines;
    lines.Put(std::string(100, 'a'));
    lines.Put(name);
    lines.Put(std::string(50, 'b'));
    lines.Put("c");
    EXPECT_EQ(lines.Text(), std::string(100, 'a') + " " + name + " " + std::string(50, 'b') + "\nc");
  }
}

TEST(TokenLines, CountALineFromTheLastLineEndWithinAToken) {
  TokenLines lines;
  lines.Put("<" + std::string(110, '0') + "\n00>");
  lines.Put(std::string(100, 'a'));
  EXPECT_EQ(lines.Text(), "<" + std::string(110, '0') + "\n00> " + std::string(100, 'a'));
}

TEST(TokenLines, RefuseALineThatTheEngineWouldNotRead) {
  TokenLines lines;
  lines.Put("/" + std::string(99'999, 'a'));
  lines.EndLine();
  EXPECT_THROW(lines.Put("/" + std::string(100'000, 'a')), NotPrepared);
}

}  // namespace
}  // namespace folioweld
