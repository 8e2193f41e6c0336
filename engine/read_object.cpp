#include "engine/read_object.h"

#include <algorithm>
#include <string>

#include "engine/hex_digits.h"
#include "engine/lexer.h"

namespace folioweld {

namespace {

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
  if (written.size() <= key.size()) return written == key;
  // Longer by its escapes, the first of which stands where the two begin to differ.
  const auto other = std::mismatch(key.begin(), key.end(), written.begin()).second;
  return *other == '#' && PlainName(written) == key;
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

std::int32_t ParseAsOthersDo(const ReadInput& input, std::string_view text) {
  if (HasOtherWhiteSpace(text)) {
    std::string spaced(text);
    std::replace_if(
        spaced.begin(), spaced.end(), [](char c) { return kOtherWhiteSpaceSet.Has(c); }, ' ');
    text = input.State.Texts.Keep(spaced);
  }
  std::int32_t firstRow = -1;
  input.Reader.ParseDictionary(text, 1, firstRow);
  return firstRow;
}

std::string_view ValueOf(const MergeState& state, std::int32_t firstRow, std::string_view key) {
  for (std::int32_t row = firstRow; row >= 0; row = state.NameEntries[row].NameId) {
    const NameEntry& entry = state.NameEntries[row];
    if (IsName(entry.NameText, key)) return entry.NameValue == "null" ? std::string_view() : entry.NameValue;
  }
  return {};
}

ReadObject::ReadObject(const ReadInput& input, std::int32_t number)
    : input_(input), entry_(FindEntry(input.State, input.Slot, number)) {
  if (Exists()) text_ = input.State.ObjLines[entry_->LastLine];
}

std::int32_t ReadObject::FirstRow() {
  if (firstRow_ == kNotLookedUp) {
    firstRow_ = -1;
    if (IsDictionary()) {
      const bool isOdd = input_.MayHaveOtherWhiteSpace && HasOtherWhiteSpace(text_);
      firstRow_ = isOdd ? ParseAsOthersDo(input_, TrimBlanks(text_)) : entry_->ObjAux;
    }
  }
  return firstRow_;
}

std::int32_t ReferencedNumber(std::string_view text) {
  NumberPair found;
  return ReadNumberPair(text, 0, kReferenceKeyword, found) ? found.Number : -1;
}

std::int32_t DictionaryAt(const ReadInput& input, std::string_view value) {
  const std::int32_t number = ReferencedNumber(value);
  if (number >= 0) return ReadObject(input, number).FirstRow();
  return value.empty() ? -1 : ParseAsOthersDo(input, value);
}

std::string_view TextAt(const ReadInput& input, std::string_view value) {
  const std::int32_t number = ReferencedNumber(value);
  return number >= 0 ? ReadObject(input, number).Text() : value;
}

}  // namespace folioweld
