#include "engine/text_pool.h"

#include <algorithm>

namespace folioweld {

namespace {
constexpr std::size_t kBlockSize = 64 * 1024;
}

std::string_view TextPool::Keep(std::string_view text) {
  if (text.empty()) return {};
  if (text.size() > left_) {
    const std::size_t size = std::max(kBlockSize, text.size());
    blocks_.push_back(std::make_unique_for_overwrite<char[]>(size));
    // A long text gets a block of its own and the current block stays in use.
    if (text.size() > kBlockSize / 2) {
      std::copy(text.begin(), text.end(), blocks_.back().get());
      return {blocks_.back().get(), text.size()};
    }
    next_ = blocks_.back().get();
    left_ = size;
  }
  char* const kept = next_;
  std::copy(text.begin(), text.end(), kept);
  next_ += text.size();
  left_ -= text.size();
  return {kept, text.size()};
}

void TextPool::Reset() {
  blocks_.clear();
  next_ = nullptr;
  left_ = 0;
}

}  // namespace folioweld
