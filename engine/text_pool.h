#pragma once

#include <algorithm>
#include <cstddef>
#include <memory_resource>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

namespace folioweld {

/// Keeps texts at fixed addresses until it is reset, so that an object's text and the many short pieces of
/// its dictionary are one copy.
class TextPool {
 public:
  TextPool() = default;
  /// The memory stays the caller's.
  explicit TextPool(std::pmr::memory_resource* memory) : memory_(memory) {}
  TextPool(const TextPool&) = delete;
  TextPool& operator=(const TextPool&) = delete;
  ~TextPool() { Reset(); }

  /// A view of the pool's own copy of the text, valid until `Reset`.
  [[nodiscard]] std::string_view Keep(std::string_view text) {
    const std::span<char> kept = KeepCopy(text);
    return {kept.data(), kept.size()};
  }

  /// The same for whoever goes on to change the copy.
  [[nodiscard]] std::span<char> KeepCopy(std::string_view text) {
    char* const kept = Room(text.size());
    std::copy(text.begin(), text.end(), kept);
    return {kept, text.size()};
  }

  /// The same as `Keep` for a text that `longer`, one that was kept before, may end with: then it is a view
  /// of that one. Otherwise `longer` becomes the text.
  [[nodiscard]] std::string_view KeepOnce(std::string_view text, std::string_view& longer) {
    if (!longer.ends_with(text)) longer = Keep(text);
    return longer.substr(longer.size() - text.size());
  }

  /// Gives `take` the pool part by part, in which texts stand one after the other. Much cheaper than to look
  /// at every text by itself.
  template <typename Take>
  void ForEachPart(Take take) const {
    for (std::size_t i = 0; i < blocks_.size(); ++i) {
      const bool isInUse = i == inUse_ && next_ != nullptr;
      take(std::string_view(blocks_[i].Start, isInUse ? kBlockSize - left_ : blocks_[i].Used));
    }
  }

  void Reset();

 private:
  [[nodiscard]] char* Room(std::size_t size) {
    if (size > left_) return RoomInNewBlock(size);
    left_ -= size;
    return std::exchange(next_, next_ + size);
  }
  [[nodiscard]] char* RoomInNewBlock(std::size_t size);

  static constexpr std::size_t kBlockSize = 64 * 1024;

  struct Block {
    char* Start = nullptr;
    std::size_t Size = 0;
    std::size_t Used = 0;  ///< counts for all but the one in use
  };
  std::pmr::memory_resource* memory_ = std::pmr::new_delete_resource();
  std::vector<Block> blocks_;
  std::size_t inUse_ = 0;  ///< index of the block in use
  char* next_ = nullptr;   ///< what is left of the block in use
  std::size_t left_ = 0;
};

}  // namespace folioweld
