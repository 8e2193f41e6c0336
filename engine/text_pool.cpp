#include "engine/text_pool.h"

#include <algorithm>

namespace folioweld {

namespace {
constexpr std::size_t kBlockSize = 64 * 1024;
}

char* TextPool::AddBlock(std::size_t size) {
  // Room in the list first, so that no block gets lost.
  if (blocks_.size() == blocks_.capacity()) blocks_.reserve(2 * blocks_.size() + 1);
  blocks_.push_back({static_cast<char*>(memory_->allocate(size, 1)), size});
  return blocks_.back().Start;
}

char* TextPool::RoomInNewBlock(std::size_t size) {
  char* const block = AddBlock(std::max(kBlockSize, size));
  // A long text gets a block of its own and the current block stays in use.
  if (size > kBlockSize / 2) return block;
  next_ = block + size;
  left_ = kBlockSize - size;
  return block;
}

void TextPool::MoveDraft(std::size_t more) {
  // Nothing else is in a block that the draft begins.
  const bool wasAlone = !blocks_.empty() && blocks_.back().Start == next_;
  // Twice what is needed now, so that a text that goes on and on is not moved for every line of it.
  const std::size_t size = std::max(kBlockSize, 2 * (draftSize_ + more));
  char* const block = AddBlock(size);
  std::copy_n(next_, draftSize_, block);
  if (wasAlone) {
    const auto old = blocks_.end() - 2;
    memory_->deallocate(old->Start, old->Size, 1);
    blocks_.erase(old);
  }
  next_ = block;
  left_ = size;
}

void TextPool::Reset() {
  // The last one first: the memory looks for a long piece from there.
  for (; !blocks_.empty(); blocks_.pop_back()) {
    memory_->deallocate(blocks_.back().Start, blocks_.back().Size, 1);
  }
  next_ = nullptr;
  left_ = 0;
  draftSize_ = 0;
}

}  // namespace folioweld
