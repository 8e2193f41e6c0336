#include "engine/text_pool.h"

namespace folioweld {

namespace {
constexpr std::size_t kBlockSize = 64 * 1024;
/// A longer text gets a block of its own, so that little of a block is left unused.
constexpr std::size_t kLongText = kBlockSize / 8;
}  // namespace

char* TextPool::RoomInNewBlock(std::size_t size) {
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

bool TextPool::Holds(char c) const {
  for (std::size_t i = 0; i < blocks_.size(); ++i) {
    const bool isInUse = i == inUse_ && next_ != nullptr;
    const std::size_t used = isInUse ? kBlockSize - left_ : blocks_[i].Used;
    if (std::string_view(blocks_[i].Start, used).find(c) != std::string_view::npos) return true;
  }
  return false;
}

void TextPool::Reset() {
  for (const Block& block : blocks_) memory_->deallocate(block.Start, block.Size, 1);
  blocks_.clear();
  inUse_ = 0;
  next_ = nullptr;
  left_ = 0;
}

}  // namespace folioweld
