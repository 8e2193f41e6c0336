#include "engine/merge_memory.h"

#include <algorithm>
#include <iterator>
#include <new>

// Tells the address sanitizer what is free, so that it sees who holds on to a piece for too long; without it,
// nothing.
#if __has_include(<sanitizer/asan_interface.h>)
#include <sanitizer/asan_interface.h>
#else
#define ASAN_POISON_MEMORY_REGION(start, size) static_cast<void>(start), static_cast<void>(size)
#define ASAN_UNPOISON_MEMORY_REGION(start, size) static_cast<void>(start), static_cast<void>(size)
#endif

namespace folioweld {

namespace {

constexpr std::size_t kAlignment = alignof(std::max_align_t);
/// A small merge does not need more, and a large page would be more than it has use for.
constexpr std::size_t kFirstBlock = 128 * 1024;
/// The large pages of nearly every system that has some.
constexpr std::size_t kLargePage = 2 * 1024 * 1024;
/// A longer piece gets a block of its own.
constexpr std::size_t kLongestShared = 128 * 1024;
/// Shared blocks that the next merge uses again.
constexpr std::size_t kKeptBlocks = 2;

}  // namespace

MergeMemory::~MergeMemory() {
  std::for_each(shared_.begin(), shared_.end(), Free);
  std::for_each(own_.begin(), own_.end(), Free);
}

void MergeMemory::Rewind() {
  std::for_each(own_.begin(), own_.end(), Free);
  own_.clear();
  for (; shared_.size() > kKeptBlocks; shared_.pop_back()) Free(shared_.back());
  for (const Block& block : shared_) ASAN_POISON_MEMORY_REGION(block.Start, block.Size);
  begun_ = 0;
  left_ = 0;
}

void* MergeMemory::do_allocate(std::size_t size, std::size_t /*alignment*/) {
  // Nothing here needs more than the alignment that suits every ordinary type.
  const std::size_t taken = (std::max(size, std::size_t{1}) + kAlignment - 1) / kAlignment * kAlignment;
  if (size > kLongestShared) return AddBlock(own_, taken, kAlignment).Start;
  if (taken > left_) BeginBlock();
  ASAN_UNPOISON_MEMORY_REGION(next_, size);
  left_ -= taken;
  return std::exchange(next_, next_ + taken);
}

void MergeMemory::do_deallocate(void* piece, std::size_t size, std::size_t /*alignment*/) {
  if (size <= kLongestShared) return;
  // Nearly always one of the last: a text that grows is moved from block to block.
  const auto block = std::find_if(own_.rbegin(), own_.rend(),
                                  [piece](const Block& candidate) { return candidate.Start == piece; });
  if (block == own_.rend()) return;
  Free(*block);
  own_.erase(std::next(block).base());
}

void MergeMemory::BeginBlock() {
  if (begun_ == shared_.size()) AddSharedBlock();
  const Block& block = shared_[begun_++];
  ASAN_POISON_MEMORY_REGION(block.Start, block.Size);
  next_ = block.Start;
  left_ = block.Size;
}

void MergeMemory::AddSharedBlock() {
  if (shared_.empty()) {
    static_cast<void>(AddBlock(shared_, kFirstBlock, kAlignment));
    return;
  }
  const Block block = AddBlock(shared_, kLargePage, kLargePage);
  // Whatever the answer, there is memory.
  if (system_ != nullptr) static_cast<void>(system_->PreferLargePages(block.Start, block.Size));
}

MergeMemory::Block MergeMemory::AddBlock(std::vector<Block>& blocks, std::size_t size,
                                         std::size_t alignment) {
  // Room in the list first, so that no block gets lost.
  if (blocks.size() == blocks.capacity()) blocks.reserve(2 * blocks.size() + 1);
  auto* const start = static_cast<std::byte*>(::operator new (size, std::align_val_t{alignment}));
  return blocks.emplace_back(Block{start, size, alignment});
}

void MergeMemory::Free(const Block& block) {
  ::operator delete (block.Start, std::align_val_t{block.Alignment});
}

}  // namespace folioweld
