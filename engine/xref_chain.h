#pragma once

#include <cstdint>

#include "engine/merge_shell.h"
#include "engine/merge_state.h"
#include "engine/pdf_reader.h"

namespace folioweld {

/// Follows the chain of an input's cross-reference sections from the newest one, at `DocXrefStart`, along
/// /Prev to the oldest, and fills the section tables. Raises `RuleBroken`, also on a cancel.
void WalkXrefChain(MergeState& state, const FileModule& files, MergeShell& shell, PdfReader& reader,
                   std::int16_t slot);

}  // namespace folioweld
