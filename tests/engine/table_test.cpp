#include "engine/table.h"

#include <gtest/gtest.h>
#include <limits>
#include <string>

namespace folioweld {
namespace {

constexpr std::int32_t kLargest = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t kSmallest = std::numeric_limits<std::int32_t>::min();

TEST(TableTest, IsNotAllocatedUntilItIsResetOrGrown) {
  Table<int> table;
  EXPECT_EQ(table.UpperBound(), -1);
  EXPECT_THROW(static_cast<void>(table[0]), IndexError);
}

TEST(TableTest, ResetLeavesFreshRows) {
  Table<std::string> table;
  table.Reset(3);
  table[2] = "old";
  table.Reset(1);
  EXPECT_EQ(table.UpperBound(), 0);
  table.Grow(2);
  EXPECT_EQ(table[2], "");
}

TEST(TableTest, GrowingKeepsTheContents) {
  Table<std::string> table;
  table.Reset(1);
  table[0] = "first";
  table.Grow(1000);
  EXPECT_EQ(table.UpperBound(), 1000);
  EXPECT_EQ(table[0], "first");
  EXPECT_EQ(table[1000], "");
}

TEST(TableTest, GrowingToLessChangesNothing) {
  Table<int> table;
  table.Reset(5);
  table[4] = 7;
  table.Grow(2);
  EXPECT_EQ(table.UpperBound(), 4);
  EXPECT_EQ(table[4], 7);
  table.Grow(-1);
  EXPECT_EQ(table.UpperBound(), 4);
}

struct CountedMove {
  static inline long Moves = 0;
  CountedMove() = default;
  CountedMove(const CountedMove&) = default;
  CountedMove& operator=(const CountedMove&) = default;
  CountedMove(CountedMove&& /*other*/) noexcept { ++Moves; }
  CountedMove& operator=(CountedMove&&) = default;
  ~CountedMove() = default;
};

TEST(TableTest, GrowingRowByRowStaysLinear) {
  Table<CountedMove> table;
  CountedMove::Moves = 0;
  constexpr int kRows = 20000;
  for (int i = 0; i < kRows; ++i) table.Grow(i);
  EXPECT_LT(CountedMove::Moves, 4L * kRows);
}

TEST(TableTest, EveryAccessIsChecked) {
  Table<int> table;
  table.Reset(3);
  const Table<int>& constant = table;
  EXPECT_NO_THROW(static_cast<void>(table[0]));
  EXPECT_NO_THROW(static_cast<void>(constant[2]));
  EXPECT_THROW(static_cast<void>(table[-1]), IndexError);
  EXPECT_THROW(static_cast<void>(table[3]), IndexError);
  EXPECT_THROW(static_cast<void>(constant[3]), IndexError);
  EXPECT_THROW(static_cast<void>(constant[kSmallest]), IndexError);
}

TEST(TableTest, AnIndexErrorSaysWhichIndex) {
  try {
    Table<int> table;
    table[17] = 1;
    FAIL() << "nothing was raised";
  } catch (const IndexError& error) {
    EXPECT_STREQ(error.what(), "index 17 lies outside its table");
  }
}

TEST(SlotArrayTest, CountsFromOneToThree) {
  SlotArray<int> slots;
  const SlotArray<int>& constant = slots;
  slots(1) = 10;
  slots(3) = 30;
  EXPECT_EQ(constant(1), 10);
  EXPECT_EQ(constant(2), 0);
  EXPECT_EQ(constant(3), 30);
  EXPECT_THROW(static_cast<void>(slots(0)), IndexError);
  EXPECT_THROW(static_cast<void>(slots(4)), IndexError);
  EXPECT_THROW(static_cast<void>(constant(-1)), IndexError);
}

TEST(SlotArrayTest, MayHaveTwoSlotsOnly) {
  SlotArray<bool, 2> slots;
  EXPECT_FALSE(slots(2));
  EXPECT_THROW(static_cast<void>(slots(3)), IndexError);
}

TEST(SectionTableTest, GrowsForEverySlotAndKeepsItsContents) {
  SectionTable<std::int32_t> table;
  table.Reset();
  EXPECT_EQ(table.UpperBound(), 0);
  table(2, 0) = 22;
  table.Grow(4);
  const SectionTable<std::int32_t>& constant = table;
  EXPECT_EQ(table.UpperBound(), 4);
  for (std::int32_t slot = 1; slot <= 3; ++slot) EXPECT_EQ(constant(slot, 4), 0);
  EXPECT_EQ(constant(2, 0), 22);
  EXPECT_THROW(static_cast<void>(table(1, 5)), IndexError);
  EXPECT_THROW(static_cast<void>(constant(4, 0)), IndexError);
  table.Reset();
  EXPECT_EQ(table.UpperBound(), 0);
  EXPECT_EQ(table(2, 0), 0);
}

TEST(CheckedAddTest, AddsUpToTheLimitsAndRaisesBeyond) {
  EXPECT_EQ(CheckedAdd(kLargest - 1, 1), kLargest);
  EXPECT_EQ(CheckedAdd(kSmallest + 1, -1), kSmallest);
  EXPECT_EQ(CheckedAdd(kLargest, kSmallest), -1);
  EXPECT_THROW(static_cast<void>(CheckedAdd(kLargest, 1)), OverflowError);
  EXPECT_THROW(static_cast<void>(CheckedAdd(kSmallest, -1)), OverflowError);
}

TEST(CheckedInt16Test, TakesSixteenBitsAndRaisesBeyond) {
  EXPECT_EQ(CheckedInt16(32767), 32767);
  EXPECT_EQ(CheckedInt16(-32768), -32768);
  EXPECT_THROW(static_cast<void>(CheckedInt16(32768)), OverflowError);
  EXPECT_THROW(static_cast<void>(CheckedInt16(-32769)), OverflowError);
  try {
    static_cast<void>(CheckedInt16(kLargest));
  } catch (const std::exception& error) {
    EXPECT_STREQ(error.what(), "a count or position is too large");
  }
}

}  // namespace
}  // namespace folioweld
