#include "engine/alteration_checks.h"

#include <string_view>

#include "engine/alteration_record.h"
#include "engine/lexer.h"

namespace folioweld {

namespace {

/// The first input, when the texts of all inputs are kept.
ReadInput FirstInput(MergeState& state, MergeShell& shell) {
  ReadInput input{state, shell, 1, false, false, false};
  // All of one part before the next, while it is at hand.
  state.Texts.ForEachPart([&](std::string_view part) {
    input.MayHaveOtherWhiteSpace |= HasOtherWhiteSpace(part);
    input.MayHavePercent |= part.find('%') != std::string_view::npos;
    input.MayHaveLongNumber |= HasLongNumber(part);
  });
  return input;
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
  ReadInput input = FirstInput(state, shell);
  for (const std::int16_t slot : {std::int16_t{1}, std::int16_t{2}}) {
    if (!state.DocUsed(slot)) continue;
    input.Slot = slot;
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
  const ReadInput input = FirstInput(state, shell);
  CheckPageTree(input, shell);
  return CheckReferences(input, shell, ReferencePlace::Any);
}

}  // namespace folioweld
