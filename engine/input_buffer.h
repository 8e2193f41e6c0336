#pragma once

#include <algorithm>
#include <cstdint>
#include <string_view>
#include <utility>

#include "engine/file_buffer.h"
#include "platform/windows_api.h"

namespace folioweld {

/// A window over an open file. It covers a small file as a whole, once that has been read from a few times.
/// Over a large one, reads that follow each other widen it and jumps keep it small, so that neither many
/// short lines nor scattered objects cost much.
class InputBuffer {
 public:
  /// The handle stays the caller's; bytes from `length` on are never asked for. The spare buffers have to
  /// outlive the window.
  InputBuffer(WindowsAPI& system, WindowsAPI::Handle file, std::int64_t length, SpareFileBuffers& spare);
  InputBuffer(const InputBuffer&) = delete;
  InputBuffer& operator=(const InputBuffer&) = delete;
  ~InputBuffer() { spare_.GiveBack(std::move(bytes_)); }

  /// A view of `count` bytes (at most `kFileBufferSize`) from `offset`, valid until the next call. The range
  /// has to lie within the length. Fails when the system does, or when the file has become shorter (error
  /// EIO).
  SystemResult<std::string_view> View(std::int64_t offset, std::int64_t count) {
    if (offset < start_ || offset + count > start_ + size_) {
      const SystemError error = Fill(offset, count);
      if (error) return error;
    }
    return std::string_view(bytes_.get() + (offset - start_), static_cast<std::size_t>(count));
  }

  /// As many of the `count` bytes from `offset` as are in memory, without a look at the file; maybe none.
  [[nodiscard]] std::string_view AtHand(std::int64_t offset, std::int64_t count) const {
    if (count < 1 || offset < start_ || offset >= start_ + size_) return {};
    const std::int64_t most = std::min(count, start_ + size_ - offset);
    return {bytes_.get() + (offset - start_), static_cast<std::size_t>(most)};
  }

  /// Copies `count` bytes from `offset` out. A few come from the window, many straight from the system.
  SystemError Read(std::int64_t offset, char* bytes, std::int64_t count);

  /// Copies from `offset` to `toOffset` of an open file without reading; how many of the `count` bytes, none
  /// where only `Read` can do it or tells why it cannot be done.
  std::int64_t CopyTo(WindowsAPI::Handle to, std::int64_t toOffset, std::int64_t offset, std::int64_t count);

 private:
  SystemError Fill(std::int64_t offset, std::int64_t count);

  WindowsAPI& system_;
  WindowsAPI::Handle file_;
  std::int64_t length_;
  SpareFileBuffers& spare_;
  FileBuffer bytes_;        ///< taken by the first read
  std::int64_t start_ = 0;  ///< file offset of the window
  std::int64_t size_ = 0;
  int fills_ = 0;
};

/// Reads exactly `count` bytes at the offset, going on after short and interrupted reads.
SystemError ReadFully(WindowsAPI& system, WindowsAPI::Handle file, std::int64_t offset, char* bytes,
                      std::int64_t count);

}  // namespace folioweld
