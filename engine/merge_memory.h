#pragma once

#include <cstddef>
#include <memory_resource>
#include <vector>

#include "platform/windows_api.h"

namespace folioweld {

/// The arena for the tables and texts of one merge: pieces are handed out one after the other and are all
/// given back together. Its first blocks serve the next merge again, and larger merges get huge pages where
/// the system has them: a short run spends as long on getting memory page by page as on using it.
class MergeMemory final : public std::pmr::memory_resource {
 public:
  MergeMemory() = default;
  MergeMemory(const MergeMemory&) = delete;
  MergeMemory& operator=(const MergeMemory&) = delete;
  ~MergeMemory() override;

  /// From now on this system is asked for huge pages. It has to outlive the last allocation.
  void UseLargePages(WindowsAPI& system) { system_ = &system; }

  /// Frees everything; whoever holds a piece has to have let go of it.
  void Rewind();

 private:
  struct Block {
    std::byte* Start = nullptr;
    std::size_t Size = 0;
  };

  void* do_allocate(std::size_t size, std::size_t alignment) override;
  void do_deallocate(void* /*piece*/, std::size_t /*size*/, std::size_t /*alignment*/) override {}
  [[nodiscard]] bool do_is_equal(const std::pmr::memory_resource& other) const noexcept override {
    return this == &other;
  }

  void BeginBlock(std::size_t wanted);
  void AddBlock(std::size_t wanted);
  static void Free(const Block& block);

  WindowsAPI* system_ = nullptr;
  std::vector<Block> blocks_;
  std::size_t begun_ = 0;      ///< how many of them are in use, the last of these in part
  std::byte* next_ = nullptr;  ///< what is left of that one
  std::size_t left_ = 0;
};

}  // namespace folioweld
