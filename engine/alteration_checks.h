#pragma once

#include <cstdint>
#include <string_view>

#include "engine/merge_shell.h"
#include "engine/merge_state.h"

namespace folioweld {

// What the output will show otherwise than the inputs. Each check takes the inputs as they were read, with
// the numbers of their own, and leaves what it finds with `NoteAlteration`. A cancel is raised as a broken
// rule.

/// Runs all of them; to be called between the reading and the renumbering.
void FindAlterations(MergeState& state, MergeShell& shell);

/// What the information dictionary, whose place is taken by a fixed one, is besides.
void CheckInformation(MergeState& state, std::int16_t slot);

}  // namespace folioweld
