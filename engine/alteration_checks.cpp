#include "engine/alteration_checks.h"

#include "engine/alteration.h"

namespace folioweld {

namespace {

/// By the newest trailer's /Encrypt, a reference or a dictionary of its own.
void CheckEncryption(const ReadInput& input) {
  MergeState& state = input.State;
  if (state.DocXrefCount(input.Slot) == 0) return;
  for (std::int32_t row = state.TrailerEntry(input.Slot, 0); row >= 0; row = state.NameEntries[row].NameId) {
    if (state.NameEntries[row].NameText != "/Encrypt") continue;
    NoteAlteration(state, input.Slot, AlterationKind::Encrypted, -1);
    return;
  }
}

}  // namespace

void FindAlterations(MergeState& state, PdfReader& reader, MergeShell& shell) {
  for (const std::int16_t slot : {std::int16_t{1}, std::int16_t{2}}) {
    if (!state.DocUsed(slot)) continue;
    const ReadInput input{state, reader, slot};
    CheckEncryption(input);
    CheckInformation(input);
    if (state.DocUsed(2)) CheckPageTree(input, shell);
  }
}

}  // namespace folioweld
