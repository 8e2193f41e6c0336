// Whether the object that the fixed information dictionary replaces is anything else.

#include "engine/alteration_checks.h"
#include "engine/alteration_record.h"

namespace folioweld {

namespace {

/// What the object is besides an information dictionary, in words; empty when it is nothing else.
std::string OtherUse(const ReadInput& input, std::int32_t number) {
  const std::int32_t catalog = input.State.DocRootNumber(input.Slot);
  if (number == catalog) return "the catalog";
  if (ReferencedNumber(ReadObject(input, catalog).Value("/Pages")) == number) {
    return "the root of the page tree";
  }
  ReadObject object(input, number);
  if (object.HasStream()) return "a stream";
  if (!object.IsDictionary()) return "no dictionary";
  const std::string_view type = object.Value("/Type");
  return type.substr(0, 1) != "/" || type == "/Info" ? std::string() : "/Type " + ShownPiece(type);
}

}  // namespace

void CheckInformation(const ReadInput& input) {
  const std::int32_t number = input.State.DocInfoNumber(input.Slot);
  if (number <= 0 || !ReadObject(input, number).Exists()) return;
  std::string use = OtherUse(input, number);
  if (use.empty()) return;
  NoteAlteration(input.State, input.Slot, AlterationKind::InformationShared, number, std::move(use));
}

}  // namespace folioweld
