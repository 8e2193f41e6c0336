#include "engine/alteration_checks.h"

#include <algorithm>
#include <string_view>

#include "engine/alteration_record.h"

namespace folioweld {

namespace {

/// An input whose texts are all kept by now.
ReadInput InputOf(MergeState& state, MergeShell& shell, std::int16_t slot) {
  const auto holds = [&](std::string_view characters) {
    return std::any_of(characters.begin(), characters.end(), [&](char c) { return state.Texts.Holds(c); });
  };
  return {state, shell, slot, holds(std::string_view("\t\f\0", 3)), holds("%")};
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
  CheckRepeatedKeys(input, shell, catalog.Dictionary(), number);
  const std::int32_t root = ReferencedNumber(catalog.Value("/Pages"));
  ReadObject pages(input, root);
  CheckRepeatedKeys(input, shell, pages.Dictionary(), root);
}

}  // namespace

void FindAlterations(MergeState& state, FileModule& files, MergeShell& shell) {
  for (const std::int16_t slot : {std::int16_t{1}, std::int16_t{2}}) {
    if (!state.DocUsed(slot)) continue;
    const ReadInput input = InputOf(state, shell, slot);
    CheckStartXref(input);
    CheckKeys(input, shell);
    CheckInformation(input);
    CheckStreamEnds(input, files, shell);
    if (!state.DocUsed(2)) continue;
    CheckPageTree(input, shell);
    CheckReferences(input, shell, slot == 1 ? ReferencePlace::First : ReferencePlace::Later);
  }
  if (state.DocUsed(2)) CheckCatalog({state, shell, 2}, {state, shell, 1}, shell);
}

std::int32_t FindAlterationsAmongOthers(MergeState& state, MergeShell& shell) {
  const ReadInput input = InputOf(state, shell, 1);
  CheckPageTree(input, shell);
  return CheckReferences(input, shell, ReferencePlace::Any);
}

}  // namespace folioweld
