#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory_resource>
#include <string_view>
#include <utility>
#include <vector>

namespace folioweld {

/// A view in twelve bytes instead of sixteen and without a gap beside what stands next to it: a document has
/// several rows of two texts for each object, and memory that was never used before is what a short run pays
/// most for. Texts of the program stay below 4 GiB, see `FileModule`.
class PooledText {
 public:
  PooledText() = default;
  PooledText(std::string_view text)  // NOLINT(google-explicit-constructor): as a view is
      : size_(static_cast<std::uint32_t>(text.size())) {
    const char* const data = text.data();
    std::memcpy(address_.data(), &data, sizeof data);
  }
  PooledText(const char* text)  // NOLINT(google-explicit-constructor): as a view is
      : PooledText(std::string_view(text)) {}

  [[nodiscard]] std::string_view View() const {
    const char* data = nullptr;
    std::memcpy(&data, address_.data(), sizeof data);
    return {data, size_};
  }
  operator std::string_view() const { return View(); }  // NOLINT(google-explicit-constructor)

  friend bool operator==(PooledText first, std::string_view second) { return first.View() == second; }

 private:
  alignas(std::uint32_t) std::array<char, sizeof(const char*)> address_{};
  std::uint32_t size_ = 0;
};

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
    char* const kept = Room(text.size());
    std::copy(text.begin(), text.end(), kept);
    return {kept, text.size()};
  }

  /// The same for a text and one more character.
  [[nodiscard]] std::string_view Keep(std::string_view text, char end) {
    char* const kept = Room(text.size() + 1);
    *std::copy(text.begin(), text.end(), kept) = end;
    return {kept, text.size() + 1};
  }

  // One text at a time can be put together where it will be kept. Any other call gives it up.

  void BeginDraft() { draftSize_ = 0; }

  void AddToDraft(std::string_view piece) {
    if (piece.size() > left_ - draftSize_) MoveDraft(piece.size());
    std::copy(piece.begin(), piece.end(), next_ + draftSize_);
    draftSize_ += piece.size();
  }
  /// The same for a piece and one more character.
  void AddToDraft(std::string_view piece, char end) {
    if (piece.size() >= left_ - draftSize_) MoveDraft(piece.size() + 1);
    *std::copy(piece.begin(), piece.end(), next_ + draftSize_) = end;
    draftSize_ += piece.size() + 1;
  }

  /// What has been added, valid until more is.
  [[nodiscard]] std::string_view Draft() const { return {next_, draftSize_}; }

  [[nodiscard]] std::string_view KeepDraft() {
    const std::size_t size = std::exchange(draftSize_, 0);
    return {Room(size), size};
  }
  /// Keeps the first `size` characters and `end` in place of the next one, which the draft has to have; what
  /// is behind them is let go.
  [[nodiscard]] std::string_view KeepDraft(std::size_t size, char end) {
    draftSize_ = 0;
    next_[size] = end;
    return {Room(size + 1), size + 1};
  }

  void Reset();

 private:
  [[nodiscard]] char* Room(std::size_t size) {
    if (size > left_) return RoomInNewBlock(size);
    left_ -= size;
    return std::exchange(next_, next_ + size);
  }
  [[nodiscard]] char* RoomInNewBlock(std::size_t size);
  /// Makes room for that many more characters of the draft.
  void MoveDraft(std::size_t more);

  [[nodiscard]] char* AddBlock(std::size_t size);

  struct Block {
    char* Start = nullptr;
    std::size_t Size = 0;
  };
  std::pmr::memory_resource* memory_ = std::pmr::new_delete_resource();
  std::vector<Block> blocks_;
  char* next_ = nullptr;
  std::size_t left_ = 0;
  std::size_t draftSize_ = 0;
};

}  // namespace folioweld
