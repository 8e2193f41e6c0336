#pragma once

#include <cstddef>
#include <memory_resource>
#include <utility>
#include <vector>

#include "platform/windows_api.h"

namespace folioweld {

/// What the tables and texts of one merge are made of: memory that is handed out piece by piece and comes
/// back as a whole. To get it page by page is a fifth of the time that joining many small objects takes, so
/// it comes in blocks, the later ones of large pages where the system has them, and the first ones are used
/// again by the next merge.
class MergeMemory final : public std::pmr::memory_resource {
 public:
  MergeMemory() = default;
  MergeMemory(const MergeMemory&) = delete;
  MergeMemory& operator=(const MergeMemory&) = delete;
  ~MergeMemory() override;

  /// From now on this system is asked for large pages. It has to live for as long as memory is taken.
  void UseLargePages(WindowsAPI& system) { system_ = &system; }

  /// Everything is free again; whoever holds a piece has to have let go of it.
  void Rewind();

 private:
  struct Block {
    std::byte* Start = nullptr;
    std::size_t Size = 0;
    std::size_t Alignment = 0;
  };

  void* do_allocate(std::size_t size, std::size_t alignment) override;
  /// A piece that has a block of its own is given back at once, any other one with the rest.
  void do_deallocate(void* piece, std::size_t size, std::size_t alignment) override;
  [[nodiscard]] bool do_is_equal(const std::pmr::memory_resource& other) const noexcept override {
    return this == &other;
  }

  void BeginBlock();
  void AddSharedBlock();
  [[nodiscard]] static Block AddBlock(std::vector<Block>& blocks, std::size_t size, std::size_t alignment);
  static void Free(const Block& block);

  WindowsAPI* system_ = nullptr;
  std::vector<Block> shared_;
  std::size_t begun_ = 0;      ///< how many of them are in use, the last of these in part
  std::byte* next_ = nullptr;  ///< what is left of that one
  std::size_t left_ = 0;
  std::vector<Block> own_;  ///< long pieces
};

}  // namespace folioweld
