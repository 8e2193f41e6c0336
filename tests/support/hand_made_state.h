#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "engine/merge_state.h"

namespace folioweld::testing {

/// Makes room for the objects of both inputs, each slot empty and carrying its number in its own document.
void MakeObjects(MergeState& state, std::int32_t first, std::int32_t second);

/// Gives a slot the lines of an object.
void PutObject(MergeState& state, std::int32_t index, ObjectState objectState,
               const std::vector<std::string>& lines);

/// Gives a slot a header line as the reader writes it and one body line.
void PutDictionary(MergeState& state, std::int32_t index, const std::string& body);

/// Gives a slot a plain number.
void PutNumber(MergeState& state, std::int32_t index, const std::string& valueText);

/// The last line of the object.
[[nodiscard]] std::string_view LastLineOf(const MergeState& state, std::int32_t index);

}  // namespace folioweld::testing
