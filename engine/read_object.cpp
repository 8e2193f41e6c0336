#include "engine/read_object.h"

#include <algorithm>
#include <string>
#include <utility>

#include "engine/hex_digits.h"
#include "engine/lexer.h"

namespace folioweld {

namespace {

constexpr std::int32_t kReadKeysPerYield = 1000;

const ObjectEntry* FindEntry(const MergeState& state, std::int16_t slot, std::int32_t number) {
  if (number < 0 || number >= state.DocObjectCount(slot)) return nullptr;
  const std::int32_t index = TableIndexOf(state, number, slot);
  if (index > state.Objects.UpperBound()) return nullptr;
  const ObjectEntry& entry = state.Objects[index];
  const bool located = entry.ObjState != kNoObject && entry.ObjState != kListed && entry.LastLine >= 0;
  return located ? &entry : nullptr;
}

}  // namespace

bool IsName(std::string_view written, std::string_view key) {
  if (written.size() < key.size()) return false;
  std::size_t same = 0;
  while (same < key.size() && written[same] == key[same]) ++same;
  if (same == written.size()) return true;
  // They begin to differ at the first escape.
  return written[same] == '#' && PlainName(written) == key;
}

std::string PlainName(std::string_view written) {
  std::string plain;
  for (std::size_t at = 0; at < written.size(); ++at) {
    const int high = written[at] == '#' && at + 2 < written.size() ? HexValue(written[at + 1]) : -1;
    const int low = high >= 0 ? HexValue(written[at + 2]) : -1;
    plain += low >= 0 ? static_cast<char>(high * 16 + low) : written[at];
    if (low >= 0) at += 2;
  }
  return plain;
}

std::string_view SeenDictionary::Value(std::string_view key) {
  const std::string_view value = WrittenValue(key);
  return value == "null" ? std::string_view() : value;
}

std::string_view SeenDictionary::WrittenValue(std::string_view key) {
  TakeOtherWhiteSpaceForBlanks();
  for (std::int32_t row = firstRow_; row >= 0;) {
    const NameEntry& entry = input_->State.NameEntries[row];
    if (IsName(entry.NameText, key)) return entry.NameValue;
    row = entry.NameId;
  }
  if (firstRow_ >= 0) return {};
  EntryWalk walk(Inner());
  while (Next(walk)) {
    if (!IsName(walk.Key(), key)) continue;
    return TrimRightBlanks(walk.ValueHoldsComments() ? made_.emplace_front(walk.ValueWithoutComments())
                                                     : walk.WrittenValue());
  }
  return {};
}

bool SeenDictionary::Next(EntryWalk& walk) {
  if (++keys_ % kReadKeysPerYield == 0 && YieldAndCheckAbort(input_->Shell, input_->State)) {
    throw RuleBroken({input_->Slot, -1, -1, kCancelled});
  }
  return walk.Next();
}

void SeenDictionary::TakeOtherWhiteSpaceForBlanks() {
  if (std::exchange(isSpaced_, true)) return;
  if (!input_->MayHaveOtherWhiteSpace || !HasOtherWhiteSpace(text_)) return;
  std::string& spaced = made_.emplace_front(text_);
  std::replace_if(
      spaced.begin(), spaced.end(), [](char c) { return kOtherWhiteSpaceSet.Has(c); }, ' ');
  text_ = spaced;
  firstRow_ = -1;
}

std::string_view SeenDictionary::Inner() {
  TakeOtherWhiteSpaceForBlanks();
  return InnerText(text_).value_or(std::string_view());
}

ReadObject::ReadObject(const ReadInput& input, std::int32_t number)
    : entry_(FindEntry(input.State, input.Slot, number)),
      text_(Exists() ? input.State.ObjLines[entry_->LastLine] : std::string_view()),
      dictionary_(IsDictionary() ? SeenDictionary(input, TrimBlanks(text_), entry_->ObjAux)
                                 : SeenDictionary(input)) {}

std::string_view TextOf(const ReadInput& input, std::int32_t number) {
  const ObjectEntry* const entry = FindEntry(input.State, input.Slot, number);
  return entry == nullptr ? std::string_view() : input.State.ObjLines[entry->LastLine];
}

std::int32_t ReferencedNumber(std::string_view text) {
  NumberPair found;
  return ReadNumberPair(text, 0, kReferenceKeyword, found) ? found.Number : -1;
}

SeenDictionary DictionaryAt(const ReadInput& input, std::string_view value) {
  const std::int32_t number = ReferencedNumber(value);
  if (number >= 0) return std::move(ReadObject(input, number).Dictionary());
  return SeenDictionary(input, value);
}

std::string_view TextAt(const ReadInput& input, std::string_view value) {
  const std::int32_t number = ReferencedNumber(value);
  return number >= 0 ? TextOf(input, number) : value;
}

}  // namespace folioweld
