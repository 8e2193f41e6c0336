#include "engine/alteration_checks.h"

#include <algorithm>
#include <string_view>

#include "engine/alteration_record.h"

namespace folioweld {

namespace {

/// An input whose texts are all kept by now.
ReadInput InputOf(MergeState& state, PdfReader& reader, std::int16_t slot) {
  const auto holds = [&](std::string_view characters) {
    return std::any_of(characters.begin(), characters.end(), [&](char c) { return state.Texts.Holds(c); });
  };
  return {state, reader, slot, holds(std::string_view("\t\f\0", 3)), holds("%")};
}

/// The last "startxref" of the file is the one that others take.
void CheckStartXref(const ReadInput& input) {
  const std::int32_t offset = input.State.DocOtherStartXref(input.Slot);
  if (offset >= 0) NoteAlteration(input.State, input.Slot, AlterationKind::StartXrefDisputed, -1, {}, offset);
}

/// Of the catalog and of the root of the page tree.
void CheckKeys(const ReadInput& input, MergeShell& shell) {
  const std::int32_t number = input.State.DocRootNumber(input.Slot);
  ReadObject catalog(input, number);
  CheckRepeatedKeys(input, shell, catalog.FirstRow(), number);
  const std::int32_t root = ReferencedNumber(catalog.Value("/Pages"));
  CheckRepeatedKeys(input, shell, ReadObject(input, root).FirstRow(), root);
}

}  // namespace

void FindAlterations(MergeState& state, FileModule& files, PdfReader& reader, MergeShell& shell) {
  for (const std::int16_t slot : {std::int16_t{1}, std::int16_t{2}}) {
    if (!state.DocUsed(slot)) continue;
    const ReadInput input = InputOf(state, reader, slot);
    CheckStartXref(input);
    CheckKeys(input, shell);
    CheckInformation(input);
    CheckStreamEnds(input, files, shell);
    if (!state.DocUsed(2)) continue;
    CheckPageTree(input, shell);
    CheckReferences(input, shell, slot == 1 ? ReferencePlace::First : ReferencePlace::Later);
  }
  if (state.DocUsed(2)) CheckCatalog({state, reader, 2}, {state, reader, 1}, shell);
}

std::int32_t FindAlterationsAmongOthers(MergeState& state, PdfReader& reader, MergeShell& shell) {
  const ReadInput input = InputOf(state, reader, 1);
  CheckPageTree(input, shell);
  return CheckReferences(input, shell, ReferencePlace::Any);
}

}  // namespace folioweld
