#pragma once

#include <cstdint>
#include <forward_list>
#include <string>
#include <string_view>

#include "engine/entry_walk.h"
#include "engine/merge_shell.h"
#include "engine/merge_state.h"

namespace folioweld {

/// One input between its reading and its renumbering.
struct ReadInput {
  MergeState& State;
  MergeShell& Shell;
  std::int16_t Slot;
  /// False when it is known that no object's text has white space that only others see, a "%", or a number
  /// that is too long. Few have.
  bool MayHaveOtherWhiteSpace = true;
  bool MayHavePercent = true;
  bool MayHaveLongNumber = true;
};

// How other readers see a dictionary: a tab, a form feed and a NUL part tokens as well, and "#41" in a name
// is an "A".

/// Whether the name, as it is written, is the key.
[[nodiscard]] bool IsName(std::string_view written, std::string_view key);

/// The name without escapes.
[[nodiscard]] std::string PlainName(std::string_view written);

/// A dictionary as others see it. A cancel that is seen among many keys is raised as a broken rule.
class SeenDictionary {
 public:
  /// Of a text that outlives it; a text that is no dictionary is one without keys. Its rows in `NameEntries`,
  /// where the object has any, take less time than its text.
  explicit SeenDictionary(const ReadInput& input, std::string_view text = {}, std::int32_t firstRow = -1)
      : input_(&input), text_(text), firstRow_(firstRow) {}

  /// The value of a key, the first if there are several; empty when there is none or it is null. Stays as
  /// long as the dictionary does.
  [[nodiscard]] std::string_view Value(std::string_view key);

  /// Gives `take` one key after the other, as they are written.
  template <typename Take>
  void ForEachKey(Take take) {
    EntryWalk walk(Inner());
    while (Next(walk)) take(walk.Key());
  }

 private:
  void TakeOtherWhiteSpaceForBlanks();
  [[nodiscard]] std::string_view Inner();
  [[nodiscard]] bool Next(EntryWalk& walk);
  [[nodiscard]] std::string_view WrittenValue(std::string_view key);

  const ReadInput* input_;
  std::string_view text_;
  std::int32_t firstRow_;
  bool isSpaced_ = false;
  std::int32_t keys_ = 0;                ///< passed since the user's wishes were looked at
  std::forward_list<std::string> made_;  ///< texts that stand so in no file
};

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

  /// Stays as long as the `ReadObject` does.
  [[nodiscard]] std::string_view Value(std::string_view key) { return dictionary_.Value(key); }
  /// Without keys when the object is none.
  [[nodiscard]] SeenDictionary& Dictionary() { return dictionary_; }

 private:
  const ObjectEntry* entry_;
  std::string_view text_;
  SeenDictionary dictionary_;
};

/// The number of the reference with which the text begins; -1 when it begins with none.
[[nodiscard]] std::int32_t ReferencedNumber(std::string_view text);

/// The text of an object; empty when there is none of that number.
[[nodiscard]] std::string_view TextOf(const ReadInput& input, std::int32_t number);

/// What a value is, or what it refers to: the dictionary (without keys when it is none), and the text. A
/// value that is no reference has to outlive the dictionary.
[[nodiscard]] SeenDictionary DictionaryAt(const ReadInput& input, std::string_view value);
[[nodiscard]] std::string_view TextAt(const ReadInput& input, std::string_view value);

}  // namespace folioweld
