// Whether the object that the fixed information dictionary replaces is anything else.

#include "engine/alteration.h"
#include "engine/alteration_checks.h"
#include "engine/read_object.h"

namespace folioweld {

namespace {

/// What the object is besides an information dictionary, in words; empty when it is nothing else.
std::string OtherUse(const MergeState& state, std::int16_t slot, std::int32_t number) {
  const std::int32_t catalogNumber = state.DocRootNumber(slot);
  if (number == catalogNumber) return "the catalog";
  const ReadObject catalog(state, slot, catalogNumber);
  if (ReferencedNumber(catalog.Value("/Pages")) == number) return "the root of the page tree";
  const ReadObject object(state, slot, number);
  if (object.HasStream()) return "a stream";
  if (!object.IsDictionary()) return "no dictionary";
  const std::string_view type = object.Value("/Type");
  return type.substr(0, 1) != "/" || type == "/Info" ? std::string() : "/Type " + ShownPiece(type);
}

}  // namespace

void CheckInformation(MergeState& state, std::int16_t slot) {
  const std::int32_t number = state.DocInfoNumber(slot);
  if (number <= 0 || !ReadObject(state, slot, number).Exists()) return;
  std::string use = OtherUse(state, slot, number);
  if (!use.empty()) NoteAlteration(state, slot, AlterationKind::InformationShared, number, std::move(use));
}

}  // namespace folioweld
