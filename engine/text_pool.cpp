#include "engine/text_pool.h"

#include <algorithm>

namespace folioweld {

namespace {
constexpr std::size_t kBlockSize = 64 * 1024;
}

char* TextPool::RoomInNewBlock(std::size_t size) {
  blocks_.push_back(std::make_unique_for_overwrite<char[]>(std::max(kBlockSize, size)));
  char* const block = blocks_.back().get();
  // A long text gets a block of its own and the current block stays in use.
  if (size > kBlockSize / 2) return block;
  next_ = block + size;
  left_ = kBlockSize - size;
  return block;
}

void TextPool::Reset() {
  blocks_.clear();
  next_ = nullptr;
  left_ = 0;
}

}  // namespace folioweld
