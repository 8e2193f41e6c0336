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

TEST(TextPoolTest, ALongTextDoesNotEndTheBlockInUse) {
  TextPool pool;
  const std::string_view before = pool.Keep("before");
  static_cast<void>(pool.Keep(std::string(2 * kBlock, 'x')));
  const std::string_view after = pool.Keep("after");
  EXPECT_EQ(after.data(), before.data() + before.size());
}

TEST(TextPoolTest, ADraftIsPutTogetherWhereItIsKept) {
  TextPool pool;
  static_cast<void>(pool.Keep("before"));
  pool.BeginDraft();
  pool.AddToDraft("one", '\r');
  pool.AddToDraft("two");
  pool.AddToDraft("", '\n');
  const std::string_view draft = pool.Draft();
  EXPECT_EQ(draft, "one\rtwo\n");
  const std::string_view kept = pool.KeepDraft();
  EXPECT_EQ(kept, "one\rtwo\n");
  EXPECT_EQ(kept.data(), draft.data());
}

TEST(TextPoolTest, OfADraftItsBeginningCanBeKept) {
  TextPool pool;
  pool.BeginDraft();
  pool.AddToDraft("body endobj", '\r');
  const std::string_view kept = pool.KeepDraft(4, '\n');
  EXPECT_EQ(kept, "body\n");
  EXPECT_EQ(pool.Keep("next").data(), kept.data() + kept.size());
  EXPECT_EQ(kept, "body\n");
}

TEST(TextPoolTest, ADraftThatIsNotKeptLeavesNothing) {
  TextPool pool;
  const std::string_view before = pool.Keep("before");
  pool.BeginDraft();
  pool.AddToDraft("given up");
  EXPECT_EQ(pool.Keep("after").data(), before.data() + before.size());
  pool.BeginDraft();
  EXPECT_EQ(pool.Draft(), "");
  EXPECT_EQ(pool.KeepDraft(), "");
}

TEST(TextPoolTest, ADraftOfEveryLengthIsWholeAndOtherTextsStay) {
  for (const std::size_t lines : {1U, 655U, 656U, 1311U, 20000U}) {
    TextPool pool;
    const std::string_view before = pool.Keep("before");
    std::string expected;
    pool.BeginDraft();
    for (std::size_t i = 0; i < lines; ++i) {
      std::string line(99, static_cast<char>('a' + i % 26));
      pool.AddToDraft(line, '\r');
      expected += line + '\r';
    }
    EXPECT_EQ(pool.KeepDraft(), expected) << lines;
    EXPECT_EQ(before, "before");
    EXPECT_EQ(pool.Keep("after"), "after");
  }
}

TEST(TextPoolTest, APieceThatJustFitsEndsTheBlock) {
  for (const std::size_t size : {kBlock - 1, kBlock, kBlock + 1}) {
    TextPool pool;
    pool.BeginDraft();
    pool.AddToDraft("x");
    pool.AddToDraft(std::string(size - 1, 'y'));
    pool.AddToDraft("", 'z');
    EXPECT_EQ(pool.KeepDraft(), "x" + std::string(size - 1, 'y') + "z");
  }
}

TEST(TextPoolTest, CanBeUsedAfterAReset) {
  TextPool pool;
  static_cast<void>(pool.Keep("before"));
  pool.Reset();
  EXPECT_EQ(pool.Keep("after"), "after");
}

}  // namespace
}  // namespace folioweld
