#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <utility>

#include "engine/input_buffer.h"
#include "platform/windows_api.h"

namespace folioweld {

/// Gathers what is written to an open file into large writes. Copied ranges stay descriptions until they
/// end, so that streams are read straight into those writes, and most of a long one is copied from file to
/// file.
class OutputBuffer {
 public:
  /// The handle stays the caller's. The spare buffers have to outlive this.
  OutputBuffer(WindowsAPI& system, WindowsAPI::Handle file, SpareFileBuffers& spare);
  OutputBuffer(const OutputBuffer&) = delete;
  OutputBuffer& operator=(const OutputBuffer&) = delete;
  ~OutputBuffer() { spare_.GiveBack(std::move(gathered_)); }

  SystemError Write(std::int64_t offset, std::string_view bytes) {
    // Nearly always a short text that follows the last one: it is added without further ado.
    if (range_.Count == 0 && offset == End() && bytes.size() <= LeftWithoutCall()) {
      std::copy(bytes.begin(), bytes.end(), gathered_.get() + size_);
      size_ += bytes.size();
      return {};
    }
    return WriteAnywhere(offset, bytes);
  }

  /// `source` has to live until the next call that is not a `Copy` from it.
  SystemError Copy(std::int64_t offset, InputBuffer& source, std::int64_t fromOffset, std::int64_t count);

  SystemError Flush();

 private:
  struct Range {
    InputBuffer* Source = nullptr;
    std::int64_t FromOffset = 0;
    std::int64_t Count = 0;

    void Skip(std::int64_t count) {
      FromOffset += count;
      Count -= count;
    }
  };

  /// What is gathered ends where the file's offset is a multiple of this: file systems take in large aligned
  /// writes with a fraction of the work.
  static constexpr std::size_t kGatherSize = kFileBufferSize;

  [[nodiscard]] std::int64_t End() const { return start_ + static_cast<std::int64_t>(size_); }
  /// How many bytes can be added before anything has to be written out.
  [[nodiscard]] std::size_t LeftWithoutCall() const {
    const std::size_t used = static_cast<std::size_t>(End()) % kGatherSize;
    return used == 0 && size_ > 0 ? 0 : kGatherSize - used;
  }
  SystemError WriteAnywhere(std::int64_t offset, std::string_view bytes);
  /// Writes out what is gathered when nothing can be added to it.
  SystemError MakeRoom();
  /// The memory that the next `wanted` bytes go to, or as many of them as there is room for; never none after
  /// `MakeRoom`.
  [[nodiscard]] std::span<char> Room(std::size_t wanted);
  SystemError Gather(std::string_view bytes);
  SystemError WriteGathered();
  SystemError SettleRange();
  /// Copies what it can of a long range from file to file.
  SystemError CopyBlocks(Range& range);
  /// Reads the range's next bytes to the room after the gathered ones.
  SystemError GatherFrom(Range& range, std::span<char> room);

  WindowsAPI& system_;
  WindowsAPI::Handle file_;
  SpareFileBuffers& spare_;
  FileBuffer gathered_;
  std::size_t size_ = 0;
  std::int64_t start_ = 0;  ///< file offset of the first gathered byte
  Range range_;             ///< what follows the gathered bytes
};

}  // namespace folioweld
