#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "engine/file_module.h"

namespace folioweld {

/// The text of one object, put together out of the lines of its file without the white space at their ends: a
/// carriage return stands for each line end. Remembers where that may have cost a string some of its bytes.
class ObjectText {
 public:
  /// Begins another object. The memory is used again.
  void Clear();

  /// Appends a line that ends in no white space; `offset` is the 0-based file offset of its first byte.
  void Append(std::string_view line, std::int64_t offset) {
    if (!text_.empty() && offset - end_ > 1) joints_.push_back({text_.size() - 1, end_, offset - end_});
    text_ += line;
    text_ += '\r';
    end_ = offset + static_cast<std::int64_t>(line.size());
  }

  [[nodiscard]] bool Empty() const { return text_.empty(); }

  /// Without the carriage return after the last line.
  [[nodiscard]] std::string_view View() const { return {text_.data(), text_.size() - 1}; }

  /// Puts a character in the place of another one.
  void Put(std::size_t index, char c) { text_[index] = c; }

  /// Whether the keyword that ends the text, of so many characters, is part of a string, a comment or a name.
  [[nodiscard]] bool EndsWithin(std::size_t keywordSize) const;

  /// Whether more than a line end is missing within a literal string: blanks before it, or empty lines. May
  /// look at the line ends in the file.
  [[nodiscard]] bool StringLosesBytes(FileModule& files, std::int16_t fileNumber) const;

 private:
  /// Two lines with more than one byte between them.
  struct Joint {
    std::size_t Index = 0;    ///< of the carriage return in the text
    std::int64_t Offset = 0;  ///< 0-based, of the first byte between the lines
    std::int64_t Bytes = 0;
  };

  [[nodiscard]] static bool IsLineEnd(const Joint& joint, FileModule& files, std::int16_t fileNumber);

  std::string text_;
  std::int64_t end_ = 0;  ///< file offset after the last line
  std::vector<Joint> joints_;
};

}  // namespace folioweld
