#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

#include "platform/windows_api.h"

namespace folioweld {

/// A window over an open file. Reads that follow each other widen it, jumps keep it small, so that neither
/// many short lines nor scattered objects of a large file cost much.
class InputBuffer {
 public:
  /// The handle stays the caller's; bytes from `length` on are never asked for.
  InputBuffer(WindowsAPI& system, WindowsAPI::Handle file, std::int64_t length);

  /// A view of `count` bytes from `offset`, valid until the next call. The range has to lie within the
  /// length. Fails when the system does, or when the file has become shorter (error EIO).
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

 private:
  SystemError Fill(std::int64_t offset, std::int64_t count);

  WindowsAPI& system_;
  WindowsAPI::Handle file_;
  std::int64_t length_;
  std::unique_ptr<char[]> bytes_;
  std::int64_t capacity_ = 0;
  std::int64_t start_ = 0;
  std::int64_t size_ = 0;
};

/// Reads exactly `count` bytes at the offset, going on after short and interrupted reads.
SystemError ReadFully(WindowsAPI& system, WindowsAPI::Handle file, std::int64_t offset, char* bytes,
                      std::int64_t count);

}  // namespace folioweld
