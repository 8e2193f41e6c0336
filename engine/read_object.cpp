#include "engine/read_object.h"

#include "engine/pdf_scanner.h"

namespace folioweld {

ReadObject::ReadObject(const MergeState& state, std::int16_t slot, std::int32_t number) : state_(state) {
  if (number < 0 || number >= state.DocObjectCount(slot)) return;
  const std::int32_t index = TableIndexOf(state, number, slot);
  if (index > state.Objects.UpperBound()) return;
  const ObjectEntry& entry = state.Objects[index];
  const bool located = entry.ObjState != kNoObject && entry.ObjState != kListed;
  if (located && entry.LastLine >= 0) entry_ = &entry;
}

std::string_view ReadObject::Text() const {
  return Exists() ? std::string_view(state_.ObjLines[entry_->LastLine]) : std::string_view();
}

std::string_view ReadObject::Value(std::string_view key) const {
  if (!Exists()) return {};
  for (std::int32_t row = entry_->ObjAux; row >= 0; row = state_.NameEntries[row].NameId) {
    if (state_.NameEntries[row].NameText == key) return state_.NameEntries[row].NameValue;
  }
  return {};
}

std::int32_t ReferencedNumber(std::string_view text) {
  NumberPairKeyword found;
  static_cast<void>(FindNextReference(text, 1, kReferenceKeyword, found));
  return found.KeywordIndex >= 0 && found.FirstTokenStart == 1 ? found.FirstNumber : -1;
}

}  // namespace folioweld
