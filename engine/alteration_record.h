#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "engine/merge_state.h"

namespace folioweld {

// What a merge keeps of the alterations in the documents that its inputs hold.

/// The documents that an input (slot 1 or 2) holds: the input itself, unless whoever runs the job says more.
[[nodiscard]] std::vector<SourceDocument>& SourcesOf(MergeState& state, std::int16_t slot);

/// Whether this run wrote the input. What it wrote itself need not be checked again.
[[nodiscard]] bool IsRewritten(MergeState& state, std::int16_t slot);

/// Adds a place to what is known of an input's documents; `objectNumber` is the input's, -1 = none. To be
/// called while `Objects` holds input offsets. Without an object the offset can be given. A kind that was
/// told is not counted again.
void NoteAlteration(MergeState& state, std::int16_t slot, AlterationKind kind, std::int32_t objectNumber,
                    std::string detail = {}, std::int64_t fileOffset = -1);

/// After a merge that succeeded: makes the documents of both inputs those of the output (slot 3).
void TakeSources(MergeState& state);

/// What a document loses with its catalog, unless that is carried over.
[[nodiscard]] bool IsLostWithCatalog(AlterationKind kind);

/// Has the alterations of the output's documents told, but for those that `CatalogsAreCarried` holds back.
/// Returns the sentences of those that were not told before.
[[nodiscard]] std::vector<std::string> TellSources(MergeState& state);

/// How often the user was warned about the documents of the output, and the first of the sentences.
[[nodiscard]] int WarningCount(const MergeState& state);
[[nodiscard]] std::string FirstWarning(const MergeState& state);

}  // namespace folioweld
