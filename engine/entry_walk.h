#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "engine/lexer.h"

namespace folioweld {

/// What stands between the "<<" and the ">>" of a dictionary's text, which white space may precede and spaces
/// may follow; nothing when the text is no dictionary.
[[nodiscard]] std::optional<std::string_view> InnerText(std::string_view text);

/// Walks the text between the brackets of one dictionary from key to key. Takes no memory but for values that
/// hold comments.
class EntryWalk {
 public:
  explicit EntryWalk(std::string_view inner) : text_(inner) {}

  /// Goes to the next key and its value; what stands before the key and is none is passed over. False when no
  /// key is left.
  [[nodiscard]] bool Next();

  /// Of the last key, with its "/".
  [[nodiscard]] std::string_view Key() const { return key_; }

  /// As it is written; begins with no white space.
  [[nodiscard]] std::string_view WrittenValue() const { return Between(valueStart_, index_); }
  [[nodiscard]] bool ValueHoldsComments() const { return !comments_.empty(); }
  [[nodiscard]] std::string ValueWithoutComments() const;

  /// The value without comments and without white space around it. `room` holds it when it held comments.
  [[nodiscard]] std::string_view Value(std::string& room) const;

  /// 0-based index after the last value.
  [[nodiscard]] std::size_t Index() const { return index_; }
  [[nodiscard]] bool AtEnd() const { return index_ == text_.size(); }

 private:
  static constexpr std::size_t kNotLookedUp = std::string_view::npos;
  /// What counts on the way to a key, and within a value; everything else is passed over.
  static constexpr CharacterSet kKeyMarks{"/(%"};
  static constexpr CharacterSet kValueMarks{"/(<[>]%"};

  struct Comment {
    std::size_t Start = 0;
    std::size_t End = 0;
  };

  [[nodiscard]] std::string_view Between(std::size_t start, std::size_t end) const {
    return {text_.data() + start, end - start};
  }

  [[nodiscard]] bool IsComment(std::size_t index);
  [[nodiscard]] bool PairAt(std::size_t index) const;
  [[nodiscard]] std::size_t FindKey(std::size_t index);
  [[nodiscard]] std::size_t SkipBlanksAndComments(std::size_t index);
  [[nodiscard]] std::size_t FindValueEnd(std::size_t index);
  [[nodiscard]] std::size_t PassPercent(std::size_t index);
  static void Leave(std::size_t& depth) {
    if (depth > 0) --depth;
  }

  std::string_view text_;
  std::size_t lastLineEnd_ = kNotLookedUp;
  std::string_view key_;
  std::size_t valueStart_ = 0;
  std::size_t index_ = 0;
  std::vector<Comment> comments_;  ///< within the last value
};

// Most of reading the objects is walking their keys, so it stands where it can be built into the reader.

inline bool EntryWalk::Next() {
  const std::size_t key = FindKey(index_);
  if (key == text_.size()) return false;
  const std::size_t afterKey = SkipName(text_, key);
  key_ = Between(key, afterKey);
  comments_.clear();
  valueStart_ = SkipBlanksAndComments(afterKey);
  index_ = FindValueEnd(valueStart_);
  return true;
}

inline bool EntryWalk::PairAt(std::size_t index) const {
  return index + 1 < text_.size() && text_[index + 1] == text_[index];
}

/// Index of the "/" that begins the next key; the text's size when there is none.
inline std::size_t EntryWalk::FindKey(std::size_t index) {
  for (;;) {
    index = kKeyMarks.Find(text_, index);
    if (index == text_.size() || text_[index] == '/') return index;
    if (text_[index] == '(') {
      index = SkipLiteralString(text_, index);
    } else {
      index = IsComment(index) ? SkipComment(text_, index) : index + 1;
    }
  }
}

inline std::size_t EntryWalk::SkipBlanksAndComments(std::size_t index) {
  for (;;) {
    index = kWhiteSpaceSet.Skip(text_, index);
    if (index == text_.size() || text_[index] != '%' || !IsComment(index)) return index;
    index = SkipComment(text_, index);
  }
}

/// Index of the next "/" outside strings, arrays and dictionaries, or of the text's end. A name that the
/// value begins with is passed over.
inline std::size_t EntryWalk::FindValueEnd(std::size_t index) {
  if (index < text_.size() && text_[index] == '/') index = SkipName(text_, index);
  std::size_t depth = 0;
  for (;;) {
    index = kValueMarks.Find(text_, index);
    if (index == text_.size()) return index;
    switch (text_[index]) {
      case '/':
        if (depth == 0) return index;
        ++index;
        break;
      case '(':
        index = SkipLiteralString(text_, index);
        break;
      case '<':
        if (PairAt(index)) {
          ++depth;
          index += 2;
        } else {
          index = SkipHexString(text_, index);
        }
        break;
      case '[':
        ++depth;
        ++index;
        break;
      case '>':
        // A single one ends nothing.
        if (PairAt(index)) {
          Leave(depth);
          ++index;
        }
        ++index;
        break;
      case ']':
        Leave(depth);
        ++index;
        break;
      default:
        index = PassPercent(index);
    }
  }
}

/// The value of the first key of a dictionary's text that is written so; nothing when there is none.
[[nodiscard]] std::optional<std::string> FindValue(std::string_view dictionary, std::string_view key);

}  // namespace folioweld
