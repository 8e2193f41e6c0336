#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "engine/merge_state.h"
#include "engine/pdf_reader.h"

namespace folioweld {

/// One input between its reading and its renumbering.
struct ReadInput {
  MergeState& State;
  PdfReader& Reader;
  std::int16_t Slot;
  /// False when it is known that no object's text has white space that only others see, or a "%". Few have.
  bool MayHaveOtherWhiteSpace = true;
  bool MayHavePercent = true;
};

// How other readers see a dictionary: a tab, a form feed and a NUL part tokens as well, and "#41" in a name
// is an "A". Rows are those of `NameEntries`.

/// Whether the name, as it is written, is the key.
[[nodiscard]] bool IsName(std::string_view written, std::string_view key);

/// The name without escapes.
[[nodiscard]] std::string PlainName(std::string_view written);

/// The first row of the text's dictionary; -1 when there is none. The text is one that is kept.
[[nodiscard]] std::int32_t ParseAsOthersDo(const ReadInput& input, std::string_view text);

/// The value of a key in the dictionary, the first if there are several; empty when there is none or it is
/// null.
[[nodiscard]] std::string_view ValueOf(const MergeState& state, std::int32_t firstRow, std::string_view key);

/// One object of an input, by its number in that input, with its dictionary as others see it.
class ReadObject {
 public:
  ReadObject(const ReadInput& input, std::int32_t number);

  /// The input has an object of that number that is not free.
  [[nodiscard]] bool Exists() const { return entry_ != nullptr; }
  [[nodiscard]] bool IsDictionary() const { return text_.substr(0, 2) == "<<"; }
  [[nodiscard]] bool HasStream() const { return Exists() && entry_->ObjState == kWithStream; }

  /// What stands between the object's header and "endobj" or "stream", as read.
  [[nodiscard]] std::string_view Text() const { return text_; }

  [[nodiscard]] std::string_view Value(std::string_view key) {
    return ValueOf(input_.State, FirstRow(), key);
  }
  /// -1 = the object is no dictionary that can be read.
  [[nodiscard]] std::int32_t FirstRow();

 private:
  static constexpr std::int32_t kNotLookedUp = -2;

  const ReadInput& input_;
  const ObjectEntry* entry_ = nullptr;
  std::string_view text_;
  std::int32_t firstRow_ = kNotLookedUp;
};

/// The number of the reference with which the text begins; -1 when it begins with none.
[[nodiscard]] std::int32_t ReferencedNumber(std::string_view text);

/// What a value is, or what it refers to: the first row of a dictionary (-1 = it is none), and the text.
[[nodiscard]] std::int32_t DictionaryAt(const ReadInput& input, std::string_view value);
[[nodiscard]] std::string_view TextAt(const ReadInput& input, std::string_view value);

}  // namespace folioweld
