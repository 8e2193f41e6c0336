#include "engine/text_pool.h"

#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

namespace folioweld {
namespace {

constexpr std::size_t kBlock = 64 * 1024;

TEST(TextPoolTest, KeepsACopyOfItsOwn) {
  TextPool pool;
  std::string text = "one";
  const std::string_view kept = pool.Keep(text);
  text = "two";
  EXPECT_EQ(kept, "one");
}

TEST(TextPoolTest, AnEmptyTextIsEmpty) {
  TextPool pool;
  EXPECT_EQ(pool.Keep(""), "");
}

TEST(TextPoolTest, KeepsEveryByteValue) {
  TextPool pool;
  const std::string text("a\0\xFF\r\n", 5);
  EXPECT_EQ(pool.Keep(text), text);
}

TEST(TextPoolTest, TextsStayWhereTheyAreWhileOthersAreAdded) {
  TextPool pool;
  std::vector<std::pair<std::string_view, std::string>> kept;
  // Short, middle and long texts in turn, so that blocks end, begin and are passed over.
  for (const std::size_t size : {1U, 100U, 40000U, 5U, 32768U, 32769U, 65536U, 65537U, 200000U, 7U}) {
    for (int i = 0; i < 5; ++i) {
      std::string text(size, static_cast<char>('a' + i));
      const std::string_view view = pool.Keep(text);
      kept.emplace_back(view, std::move(text));
    }
  }
  for (const auto& [view, text] : kept) EXPECT_EQ(view, text);
}

bool Holds(const TextPool& pool, char c) {
  bool holds = false;
  pool.ForEachPart([&](std::string_view texts) { holds |= texts.find(c) != std::string_view::npos; });
  return holds;
}

TEST(TextPoolTest, HoldsTheCharactersOfItsTextsAndNoOthers) {
  TextPool pool;
  EXPECT_FALSE(Holds(pool, 'a'));
  // Each ends a block, gets one of its own or begins one.
  char next = 'a';
  for (const std::size_t size : {1U, 40000U, 20000U, 30000U, 65536U, 3U}) {
    EXPECT_FALSE(Holds(pool, next)) << next;
    static_cast<void>(pool.Keep(std::string(size - 1, '.') + next));
    ++next;
    for (char c = 'a'; c < next; ++c) EXPECT_TRUE(Holds(pool, c)) << c;
  }
  pool.Reset();
  EXPECT_FALSE(Holds(pool, '.'));
  static_cast<void>(pool.Keep("b"));
  EXPECT_TRUE(Holds(pool, 'b'));
  EXPECT_FALSE(Holds(pool, 'a'));
}

TEST(TextPoolTest, ALongTextDoesNotEndTheBlockInUse) {
  TextPool pool;
  const std::string_view before = pool.Keep("before");
  static_cast<void>(pool.Keep(std::string(2 * kBlock, 'x')));
  const std::string_view after = pool.Keep("after");
  EXPECT_EQ(after.data(), before.data() + before.size());
}

TEST(TextPoolTest, ATextThatTheOneBeforeEndsWithIsKeptOnce) {
  TextPool pool;
  std::string_view longer;
  const std::string_view whole = pool.KeepOnce("one and two", longer);
  const std::string_view end = pool.KeepOnce("two", longer);
  EXPECT_EQ(end, "two");
  EXPECT_EQ(end.data(), whole.data() + 8);
  EXPECT_EQ(pool.KeepOnce("and two", longer).data(), whole.data() + 4);
  const std::string_view other = pool.KeepOnce("one", longer);
  EXPECT_EQ(other, "one");
  EXPECT_EQ(longer.data(), other.data());
}

TEST(TextPoolTest, CanBeUsedAfterAReset) {
  TextPool pool;
  static_cast<void>(pool.Keep("before"));
  pool.Reset();
  EXPECT_EQ(pool.Keep("after"), "after");
}

}  // namespace
}  // namespace folioweld
