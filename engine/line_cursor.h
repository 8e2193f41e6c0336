#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>

#include "engine/file_module.h"
#include "engine/input_buffer.h"
#include "engine/lexer.h"

namespace folioweld {

/// Index of the first line end of a buffer at or after `index`; the buffer's size when there is none. Two
/// searches of the standard library, which are quicker than a look at each character. May look at the whole
/// buffer, so it is for short ones.
[[nodiscard]] inline std::size_t FindLineEnd(std::string_view buffer, std::size_t index) {
  const std::string_view line = buffer.substr(0, buffer.find('\n', index));
  return std::min(line.find('\r', index), line.size());
}

/// Walks the lines of an open file, empty ones left out. Lines of up to 100,000 bytes are read whole.
class LineCursor {
 public:
  static constexpr std::int16_t kBufferSize = 1000;
  static constexpr std::int16_t kMostTries = 100;

  /// `position` is 1-based.
  LineCursor(FileModule& files, std::int16_t fileNumber, std::int32_t position)
      : files_(files), fileNumber_(fileNumber), window_(files.Window(fileNumber)), next_(position) {}

  /// Reads the next line into `Line`, where it stays until the next read of the file; false at the end of the
  /// file, for a line that is too long and on errors.
  [[nodiscard]] bool Next() {
    const std::string_view bytes =
        window_ == nullptr ? std::string_view() : window_->AtHand(std::int64_t{next_} - 1, kBufferSize);
    const std::size_t first = kLineEndSet.Skip(bytes, 0);
    const std::size_t end = FindLineEnd(bytes, first);
    if (end < bytes.size()) {
      Line = bytes.substr(first, end - first);
      code_ = next_ + static_cast<std::int32_t>(first);
    } else {
      // Its end lies further on.
      code_ = files_.ReadLineFromRandomFile(fileNumber_, next_, kBufferSize, kMostTries, room_, false);
      Line = room_;
      if (code_ < 1) return false;
    }
    // After the last byte of the longest file there is no position.
    next_ =
        static_cast<std::int32_t>(std::min(std::int64_t{code_} + static_cast<std::int64_t>(Line.size()) + 1,
                                           std::int64_t{std::numeric_limits<std::int32_t>::max()}));
    return true;
  }

  /// Goes on at another 1-based position.
  void GoTo(std::int32_t position) {
    next_ = position;
    code_ = 0;
  }

  /// 0-based offset of the line's first byte, or of where a failed read began.
  [[nodiscard]] std::int32_t Offset() const { return (code_ < 1 ? next_ : code_) - 1; }

  /// Why the last read failed, in words.
  [[nodiscard]] std::string Problem() const {
    if (code_ == kBeyondEnd) return "the file ends here";
    if (code_ == kNoLineEnd) return "a line is longer than 100000 bytes or has no end";
    return "the file cannot be read: " + files_.LastError().Words();
  }

  std::string_view Line;

 private:
  std::string room_;  ///< for a line that does not fit into one buffer
  FileModule& files_;
  std::int16_t fileNumber_;
  const InputBuffer* window_;
  std::int32_t next_;
  std::int32_t code_ = 0;
};

}  // namespace folioweld
