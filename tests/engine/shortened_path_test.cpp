#include "engine/shortened_path.h"

#include <gtest/gtest.h>

namespace folioweld {
namespace {

TEST(ShortenPathTest, LeavesAPathAloneThatFits) {
  EXPECT_EQ(ShortenPath<char>("", 116), "");
  EXPECT_EQ(ShortenPath<char>("/a/b.pdf", 116), "/a/b.pdf");
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
  EXPECT_EQ(ShortenPath<char>("abcdefghijklm", 12), "abc ... klm");
  EXPECT_EQ(ShortenPath<char>("abcdefghijklm", 11), "abc ... klm");
  EXPECT_EQ(ShortenPath<char>("abcdefghijklm", 10), "ab ... lm");
}

TEST(ShortenPathTest, TheShortestRoomLeavesOnlyTheDots) {
  EXPECT_EQ(ShortenPath<char>("abcdef", 5), " ... ");
}

}  // namespace
}  // namespace folioweld
