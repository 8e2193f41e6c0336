#include "engine/merge_memory.h"

#include <algorithm>
#include <new>

namespace folioweld {

namespace {

constexpr std::size_t kAlignment = alignof(std::max_align_t);
/// A small merge does not need more, and a large page would be more than it has use for.
constexpr std::size_t kFirstBlock = 256 * 1024;
/// The large pages of nearly every system that has some.
constexpr std::size_t kLargePage = 2 * 1024 * 1024;
/// A piece above this gets a block of its own.
constexpr std::size_t kLargestPiece = 128 * 1024;

}  // namespace

MergeMemory::~MergeMemory() {
  std::for_each(blocks_.begin(), blocks_.end(), Free);
}

void MergeMemory::Rewind() {
  if (blocks_.empty()) return;
  std::for_each(blocks_.begin() + 1, blocks_.end(), Free);
  blocks_.resize(1);
  next_ = blocks_[0].Start;
  left_ = blocks_[0].Size;
}

void* MergeMemory::do_allocate(std::size_t size, std::size_t /*alignment*/) {
  // Nothing here needs more than the alignment that suits every ordinary type.
  const std::size_t taken = (size + kAlignment - 1) / kAlignment * kAlignment;
  if (blocks_.empty()) BeginBlock();
  if (taken > kLargestPiece) return AddBlock(taken, kAlignment);
  if (taken > left_) BeginBlock();
  left_ -= taken;
  return std::exchange(next_, next_ + taken);
}

void MergeMemory::do_deallocate(void* piece, std::size_t size, std::size_t /*alignment*/) {
  if (size <= kLargestPiece) return;
  // Nearly always one of the last: a text that grows is moved from block to block.
  const auto block = std::find_if(blocks_.rbegin(), blocks_.rend(),
                                  [piece](const Block& candidate) { return candidate.Start == piece; });
  if (block == blocks_.rend()) return;
  Free(*block);
  blocks_.erase(std::next(block).base());
}

void MergeMemory::BeginBlock() {
  const bool first = blocks_.empty();
  const std::size_t size = first ? kFirstBlock : kLargePage;
  next_ = AddBlock(size, first ? kAlignment : kLargePage);
  left_ = size;
  // Whatever the answer, there is memory.
  if (!first && system_ != nullptr) static_cast<void>(system_->PreferLargePages(next_, size));
}

std::byte* MergeMemory::AddBlock(std::size_t size, std::size_t alignment) {
  blocks_.reserve(blocks_.size() + 1);
  auto* const start = static_cast<std::byte*>(::operator new (size, std::align_val_t{alignment}));
  blocks_.push_back({start, size, alignment});
  return start;
}

void MergeMemory::Free(const Block& block) {
  ::operator delete (block.Start, std::align_val_t{block.Alignment});
}

}  // namespace folioweld
