#include "engine/text_pool.h"

namespace folioweld {

char* TextPool::RoomInNewBlock(std::size_t size) {
  // A longer text gets a block of its own, so that little of a block is left unused.
  constexpr std::size_t kLongText = kBlockSize / 8;
  // Room in the list first, so that no block gets lost.
  if (blocks_.size() == blocks_.capacity()) blocks_.reserve(2 * blocks_.size() + 1);
  const std::size_t blockSize = size > kLongText ? size : kBlockSize;
  char* const block = static_cast<char*>(memory_->allocate(blockSize, 1));
  blocks_.push_back({block, blockSize, size});
  // The current block stays in use beside that of a long text.
  if (size > kLongText) return block;
  if (next_ != nullptr) blocks_[inUse_].Used = kBlockSize - left_;
  inUse_ = blocks_.size() - 1;
  next_ = block + size;
  left_ = kBlockSize - size;
  return block;
}

void TextPool::Reset() {
  for (const Block& block : blocks_) memory_->deallocate(block.Start, block.Size, 1);
  blocks_.clear();
  inUse_ = 0;
  next_ = nullptr;
  left_ = 0;
}

}  // namespace folioweld
