#include "engine/alteration_checks.h"

#include "engine/alteration.h"

namespace folioweld {

namespace {

/// By the newest trailer's /Encrypt, a reference or a dictionary of its own.
void CheckEncryption(MergeState& state, std::int16_t slot) {
  if (state.DocXrefCount(slot) == 0) return;
  for (std::int32_t row = state.TrailerEntry(slot, 0); row >= 0; row = state.NameEntries[row].NameId) {
    if (state.NameEntries[row].NameText != "/Encrypt") continue;
    NoteAlteration(state, slot, AlterationKind::Encrypted, -1);
    return;
  }
}

}  // namespace

void FindAlterations(MergeState& state, MergeShell& /*shell*/) {
  for (const std::int16_t slot : {std::int16_t{1}, std::int16_t{2}}) {
    if (!state.DocUsed(slot)) continue;
    CheckEncryption(state, slot);
    CheckInformation(state, slot);
  }
}

}  // namespace folioweld
