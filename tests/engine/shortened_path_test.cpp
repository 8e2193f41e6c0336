#include "engine/shortened_path.h"

#include <gtest/gtest.h>

namespace folioweld {
namespace {

TEST(ShortenPathTest, LeavesAPathAloneThatFits) {
  EXPECT_EQ(ShortenPath("", 116), "");
  EXPECT_EQ(ShortenPath("/a/b.pdf", 116), "/a/b.pdf");
  EXPECT_EQ(ShortenPath(std::string(116, 'x'), 116), std::string(116, 'x'));
}

TEST(ShortenPathTest, KeepsTheTwoEndsOfALongPath) {
  const std::string path = std::string(60, 'a') + "-" + std::string(60, 'b');
  EXPECT_EQ(ShortenPath(path, 116), std::string(55, 'a') + " ... " + std::string(55, 'b'));
}

TEST(ShortenPathTest, ShortensFromOneCharacterTooMany) {
  const std::string path = std::string(58, 'a') + std::string(59, 'b');
  EXPECT_EQ(ShortenPath(path, 116), std::string(55, 'a') + " ... " + std::string(55, 'b'));
}

TEST(ShortenPathTest, RoundsTheHalvesDown) {
  EXPECT_EQ(ShortenPath("abcdefghijklm", 12), "abc ... klm");
  EXPECT_EQ(ShortenPath("abcdefghijklm", 11), "abc ... klm");
  EXPECT_EQ(ShortenPath("abcdefghijklm", 10), "ab ... lm");
}

TEST(ShortenPathTest, TheShortestRoomLeavesOnlyTheDots) {
  EXPECT_EQ(ShortenPath("abcdef", 5), " ... ");
}

TEST(ShortenPathTest, ACutInsideACharacterMovesOutwards) {
  // 80 times two bytes; both cuts fall into the middle of one.
  std::string path;
  for (int i = 0; i < 80; ++i) path += "\xC3\xA9";
  EXPECT_EQ(ShortenPath(path, 116), path.substr(0, 54) + " ... " + path.substr(160 - 54));
  EXPECT_EQ(ShortenPath("a" + path + "b", 116),
            "a" + path.substr(0, 54) + " ... " + path.substr(160 - 54) + "b");
}

TEST(ShortenPathTest, ACutInsideACharacterOfFourBytesMovesByThreeAtMost) {
  const std::string smile = "\xF0\x9F\x98\x80";
  std::string path;
  for (int i = 0; i < 40; ++i) path += smile;
  EXPECT_EQ(ShortenPath(path, 116), path.substr(0, 52) + " ... " + path.substr(160 - 52));
  EXPECT_EQ(ShortenPath(std::string(160, '\x80'), 116),
            std::string(52, '\x80') + " ... " + std::string(52, '\x80'));
}

}  // namespace
}  // namespace folioweld
