#include "engine/merge_memory.h"

#include <algorithm>
#include <new>
#include <utility>

// The address sanitizer is told which parts of the arena are free, so that it reports their use.
#if __has_include(<sanitizer/asan_interface.h>)
#include <sanitizer/asan_interface.h>
#else
#define ASAN_POISON_MEMORY_REGION(start, size) static_cast<void>(start), static_cast<void>(size)
#define ASAN_UNPOISON_MEMORY_REGION(start, size) static_cast<void>(start), static_cast<void>(size)
#endif

namespace folioweld {

namespace {

/// Suits every ordinary type.
constexpr std::size_t kAlignment = alignof(std::max_align_t);
/// Enough for a small merge, which would only lose time with a huge page.
constexpr std::size_t kFirstBlock = 128 * 1024;
/// The size of a huge page on nearly every system.
constexpr std::size_t kLargePage = 2 * 1024 * 1024;
/// Blocks that the next merge uses again.
constexpr std::size_t kKeptBlocks = 2;

std::size_t RoundUp(std::size_t size, std::size_t unit) {
  return (size + unit - 1) / unit * unit;
}

std::align_val_t AlignmentOf(std::size_t blockSize) {
  return std::align_val_t{blockSize < kLargePage ? kAlignment : kLargePage};
}

}  // namespace

MergeMemory::~MergeMemory() {
  std::for_each(blocks_.begin(), blocks_.end(), Free);
}

void MergeMemory::Rewind() {
  while (blocks_.size() > kKeptBlocks || (!blocks_.empty() && blocks_.back().Size > kLargePage)) {
    Free(blocks_.back());
    blocks_.pop_back();
  }
  for (const Block& block : blocks_) ASAN_POISON_MEMORY_REGION(block.Start, block.Size);
  begun_ = 0;
  left_ = 0;
}

void* MergeMemory::do_allocate(std::size_t size, std::size_t /*alignment*/) {
  const std::size_t taken = RoundUp(std::max(size, std::size_t{1}), kAlignment);
  if (taken > left_) BeginBlock(taken);
  ASAN_UNPOISON_MEMORY_REGION(next_, size);
  left_ -= taken;
  return std::exchange(next_, next_ + taken);
}

void MergeMemory::BeginBlock(std::size_t wanted) {
  if (begun_ == blocks_.size() || blocks_[begun_].Size < wanted) AddBlock(wanted);
  const Block& block = blocks_[begun_++];
  ASAN_POISON_MEMORY_REGION(block.Start, block.Size);
  next_ = block.Start;
  left_ = block.Size;
}

/// The new block is the next one to be begun.
void MergeMemory::AddBlock(std::size_t wanted) {
  // Room in the list first, so that no block gets lost.
  if (blocks_.size() == blocks_.capacity()) blocks_.reserve(2 * blocks_.size() + 1);
  const std::size_t size =
      blocks_.empty() && wanted <= kFirstBlock ? kFirstBlock : RoundUp(wanted, kLargePage);
  auto* const start = static_cast<std::byte*>(::operator new(size, AlignmentOf(size)));
  blocks_.insert(blocks_.begin() + static_cast<std::ptrdiff_t>(begun_), {start, size});
  // Memory in ordinary pages will do.
  if (size > kFirstBlock && system_ != nullptr) static_cast<void>(system_->PreferLargePages(start, size));
}

void MergeMemory::Free(const Block& block) {
  ::operator delete(block.Start, AlignmentOf(block.Size));
}

}  // namespace folioweld
