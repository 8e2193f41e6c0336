#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <memory_resource>
#include <utility>
#include <vector>

#include "engine/pass_failure.h"

namespace folioweld {

/// An index lies outside its table. The pass that used the index fails.
class IndexError : public RuleBroken {
 public:
  explicit IndexError(std::int32_t index);
};

/// A count or position no longer fits its integer. The pass that computed it fails.
class OverflowError : public RuleBroken {
 public:
  OverflowError();
};

/// Adds two counts or positions; a sum that does not fit raises `OverflowError`.
[[nodiscard]] inline std::int32_t CheckedAdd(std::int32_t first, std::int32_t second) {
  std::int32_t sum = 0;
  if (__builtin_add_overflow(first, second, &sum)) throw OverflowError();
  return sum;
}

/// Narrows to the 16 bits that some indices keep on purpose; a value that does not fit raises
/// `OverflowError`.
[[nodiscard]] std::int16_t CheckedInt16(std::int32_t value);

/// A growable array, indexed from 0, whose every access is bounds-checked. The rows lie in chunks that stay
/// where they are: memory that was never used before is what costs most in a short run, so nothing is
/// reserved that is not needed and nothing is moved into larger memory.
template <typename T>
class Table {
 public:
  Table() = default;
  /// The memory stays the caller's.
  explicit Table(std::pmr::memory_resource* memory) : memory_(memory) {}

  [[nodiscard]] T& operator[](std::int32_t index) {
    const std::size_t row = Checked(index);
    return chunks_[row / kChunkRows][row % kChunkRows];
  }
  [[nodiscard]] const T& operator[](std::int32_t index) const {
    const std::size_t row = Checked(index);
    return chunks_[row / kChunkRows][row % kChunkRows];
  }

  /// The highest valid index, -1 when the table is not allocated.
  [[nodiscard]] std::int32_t UpperBound() const { return static_cast<std::int32_t>(count_) - 1; }

  /// Makes `upperBound` the highest valid index, keeping the contents.
  void Grow(std::int32_t upperBound) {
    const auto wanted = static_cast<std::size_t>(upperBound) + 1;
    while (count_ < wanted) {
      if (count_ % kChunkRows == 0) AddChunk();
      chunks_.back().resize(std::min(kChunkRows, wanted - (chunks_.size() - 1) * kChunkRows));
      count_ = (chunks_.size() - 1) * kChunkRows + chunks_.back().size();
    }
  }

  /// Gives back every row and leaves `count` fresh ones.
  void Reset(std::int32_t count) {
    chunks_ = {};
    count_ = 0;
    Grow(count - 1);
  }

 private:
  static constexpr std::size_t kChunkBytes = 16 * 1024;
  static constexpr std::size_t kChunkRows = std::bit_floor(std::max(kChunkBytes / sizeof(T), std::size_t{1}));

  [[nodiscard]] std::size_t Checked(std::int32_t index) const {
    const auto row = static_cast<std::size_t>(index);
    if (index < 0 || row >= count_) throw IndexError(index);
    return row;
  }

  void AddChunk() {
    std::pmr::vector<T> chunk(memory_);
    // The first chunk grows as it is needed: most tables of small documents never fill it.
    if (!chunks_.empty()) chunk.reserve(kChunkRows);
    chunks_.push_back(std::move(chunk));
  }

  std::pmr::memory_resource* memory_ = std::pmr::new_delete_resource();
  std::vector<std::pmr::vector<T>> chunks_;
  std::size_t count_ = 0;
};

/// One value per document slot, indexed from 1: 1 = first input, 2 = second input, 3 = output.
template <typename T, std::int32_t kSlots = 3>
class SlotArray {
 public:
  [[nodiscard]] T& operator()(std::int32_t slot) { return values_[Checked(slot)]; }
  [[nodiscard]] const T& operator()(std::int32_t slot) const { return values_[Checked(slot)]; }

 private:
  [[nodiscard]] static std::size_t Checked(std::int32_t slot) {
    if (slot < 1 || slot > kSlots) throw IndexError(slot);
    return static_cast<std::size_t>(slot - 1);
  }

  std::array<T, static_cast<std::size_t>(kSlots)> values_{};
};

/// A field of every cross-reference section: indexed (slot 1 to 3, section 0 to n), section 0 the newest.
template <typename T>
class SectionTable {
 public:
  [[nodiscard]] T& operator()(std::int32_t slot, std::int32_t section) { return rows_(slot)[section]; }
  [[nodiscard]] const T& operator()(std::int32_t slot, std::int32_t section) const {
    return rows_(slot)[section];
  }

  [[nodiscard]] std::int32_t UpperBound() const { return rows_(1).UpperBound(); }

  void Grow(std::int32_t upperBound) {
    for (std::int32_t slot = 1; slot <= 3; ++slot) rows_(slot).Grow(upperBound);
  }

  void Reset() {
    for (std::int32_t slot = 1; slot <= 3; ++slot) rows_(slot).Reset(1);
  }

 private:
  SlotArray<Table<T>> rows_;
};

}  // namespace folioweld
