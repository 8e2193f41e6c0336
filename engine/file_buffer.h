#pragma once

#include <array>
#include <cstddef>
#include <memory>
#include <utility>

namespace folioweld {

/// Memory under the reads or writes of one open file.
using FileBuffer = std::unique_ptr<char[]>;
inline constexpr std::size_t kFileBufferSize = 256 * 1024;

/// Keeps the buffers of closed files for the next ones: in the merge of a folder, hundreds of files follow
/// each other, and to get this much memory from the system each time takes a tenth of the whole run.
class SpareFileBuffers {
 public:
  [[nodiscard]] FileBuffer Take() {
    if (count_ == 0) return std::make_unique_for_overwrite<char[]>(kFileBufferSize);
    return std::move(spare_[--count_]);
  }

  void GiveBack(FileBuffer buffer) noexcept {
    if (buffer && count_ < spare_.size()) spare_[count_++] = std::move(buffer);
  }

 private:
  std::array<FileBuffer, 3> spare_;  ///< as many as a merge uses at a time
  std::size_t count_ = 0;
};

}  // namespace folioweld
