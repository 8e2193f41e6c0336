#include "engine/merge_memory.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <gtest/gtest.h>
#include <vector>

#include "engine/merge_state.h"
#include "tests/support/faulting_system.h"

namespace folioweld {
namespace {

constexpr std::size_t kPiece = 16 * 1024;
constexpr std::size_t kFirstBlock = 128 * 1024;
constexpr std::size_t kLargePage = 2 * 1024 * 1024;
constexpr std::size_t kLong = 1024 * 1024;

class MergeMemoryTest : public ::testing::Test {
 protected:
  char* Take(std::size_t size) {
    auto* const piece = static_cast<char*>(Memory.allocate(size));
    std::memset(piece, static_cast<int>(pieces_.size() % 251), size);
    pieces_.push_back({piece, size});
    return piece;
  }
  /// Takes pieces until that many bytes are taken.
  void TakeAll(std::size_t size) {
    for (std::size_t taken = 0; taken < size; taken += kPiece) Take(kPiece);
  }
  void Rewind() {
    pieces_.clear();
    Memory.Rewind();
  }
  /// Every piece still holds what was put there.
  void ExpectPiecesAsTaken() const {
    for (std::size_t i = 0; i < pieces_.size(); ++i) {
      const auto& [start, size] = pieces_[i];
      EXPECT_TRUE(std::all_of(start, start + size, [i](char c) { return c == static_cast<char>(i % 251); }))
          << i;
    }
  }
  [[nodiscard]] std::ptrdiff_t QuestionsForLargePages() const {
    return std::count_if(System.Calls.begin(), System.Calls.end(),
                         [](const auto& call) { return call.Name == "PreferLargePages"; });
  }

  testing::FaultingSystem System;
  MergeMemory Memory;

 private:
  struct Piece {
    char* Start;
    std::size_t Size;
  };
  std::vector<Piece> pieces_;
};

TEST_F(MergeMemoryTest, PiecesOfEverySizeStayApart) {
  for (const std::size_t size : {1U, 7U, 16U, 17U, 4096U, 131072U, 131073U, 1048576U, 3U, 3000000U, 5U}) {
    for (int i = 0; i < 4; ++i) Take(size);
  }
  TakeAll(2 * kLargePage);
  ExpectPiecesAsTaken();
}

TEST_F(MergeMemoryTest, PiecesAreAlignedForEveryOrdinaryType) {
  for (int i = 0; i < 100; ++i) {
    EXPECT_EQ(
        reinterpret_cast<std::uintptr_t>(Take(1 + static_cast<std::size_t>(i))) % alignof(std::max_align_t),
        0U);
  }
}

TEST_F(MergeMemoryTest, ASmallMergeAsksForNoLargePages) {
  Memory.UseLargePages(System);
  TakeAll(kFirstBlock);
  EXPECT_EQ(QuestionsForLargePages(), 0);
}

TEST_F(MergeMemoryTest, EveryFurtherBlockAsksForLargePages) {
  Memory.UseLargePages(System);
  TakeAll(kFirstBlock + kLargePage);
  EXPECT_EQ(QuestionsForLargePages(), 1);
  TakeAll(kPiece);
  EXPECT_EQ(QuestionsForLargePages(), 2);
  ExpectPiecesAsTaken();
}

TEST_F(MergeMemoryTest, WithoutLargePagesThereIsMemoryAllTheSame) {
  System.Decide = testing::FaultingSystem::Failing("PreferLargePages", EINVAL);
  Memory.UseLargePages(System);
  TakeAll(2 * kLargePage);
  EXPECT_GT(QuestionsForLargePages(), 0);
  ExpectPiecesAsTaken();
}

TEST_F(MergeMemoryTest, TheFirstTwoBlocksAreUsedAgain) {
  Memory.UseLargePages(System);
  char* const first = Take(kFirstBlock);
  char* const second = Take(kPiece);
  TakeAll(2 * kLargePage);
  Take(kLong);
  const std::ptrdiff_t questions = QuestionsForLargePages();
  Memory.Rewind();
  EXPECT_EQ(Memory.allocate(kFirstBlock), first);
  EXPECT_EQ(Memory.allocate(kPiece), second);
  EXPECT_EQ(QuestionsForLargePages(), questions);
}

TEST_F(MergeMemoryTest, NothingIsAPieceToo) {
  void* const nothing = Memory.allocate(0);
  EXPECT_NE(nothing, nullptr);
  EXPECT_NE(Memory.allocate(0), nothing);
}

TEST_F(MergeMemoryTest, ANewMemoryCanBeRewound) {
  Memory.Rewind();
  Take(1);
  ExpectPiecesAsTaken();
}

TEST_F(MergeMemoryTest, APieceLongerThanABlockIsWholeAndNotKeptForTheNextMerge) {
  Memory.UseLargePages(System);
  Take(kPiece);
  Take(2 * kLargePage + 1);
  EXPECT_EQ(QuestionsForLargePages(), 1);
  Take(kPiece);
  ExpectPiecesAsTaken();
  Rewind();
  TakeAll(kFirstBlock);
  EXPECT_EQ(QuestionsForLargePages(), 1);
  Take(kPiece);
  EXPECT_EQ(QuestionsForLargePages(), 2);
}

TEST_F(MergeMemoryTest, APieceThatAKeptBlockIsTooSmallForGetsOneOfItsOwn) {
  TakeAll(kFirstBlock + kPiece);
  Rewind();
  for (int i = 0; i < 3; ++i) Take(kLargePage + 1);
  TakeAll(2 * kLargePage);
  ExpectPiecesAsTaken();
}

TEST_F(MergeMemoryTest, IsEqualToItselfOnly) {
  const MergeMemory other;
  EXPECT_TRUE(Memory.is_equal(Memory));
  EXPECT_FALSE(Memory.is_equal(other));
}

TEST_F(MergeMemoryTest, AResetStateUsesItsMemoryAgain) {
  MergeState state;
  ResetMergeState(state);
  const auto lineOf = [&state] {
    static_cast<void>(AppendObjLine(state, "line"));
    state.Objects.Grow(5000);
    state.NameEntries.Grow(50000);
    return state.ObjLines[0].data();
  };
  const char* const before = lineOf();
  for (int i = 0; i < 3; ++i) {
    ResetMergeState(state);
    EXPECT_EQ(lineOf(), before);
    EXPECT_EQ(state.ObjLines[0], "line");
    EXPECT_EQ(state.NameEntries[50000].NameId, -1);
  }
}

}  // namespace
}  // namespace folioweld
