#pragma once

#include <cstdint>
#include <string>

#include "engine/file_module.h"
#include "engine/merge_state.h"
#include "engine/pass_failure.h"

namespace folioweld {

/// The acceptance test: whether an open file has the outline of a document that can be joined, that is a
/// header, a marker comment, and a tail whose "startxref" leads to a classic cross-reference table. Reads a
/// few bytes, parses nothing.
///
/// `result` becomes the 0-based offset of the first byte after the "xref" keyword and its line end, -1 when
/// the file is refused; `why` then says which rule is broken (slot 0 when `slot` is neither 1 nor 2). For
/// slots 1 and 2 the outcome is recorded in `DocHeader`, `DocSecondLine` and `DocXrefStart`; for any other
/// slot the state is left alone.
void CheckDocumentStructure(MergeState& state, FileModule& files, std::int16_t fileNumber, std::int16_t slot,
                            std::int32_t& result, PassFailure& why);

/// Whether the file can be opened and joined. When it cannot and `why` is given, the reason goes there.
/// Nothing is shown or logged.
[[nodiscard]] bool IsThisDocumentApdf(FileModule& files, const std::string& sFileSpecif,
                                      PassFailure* why = nullptr);

}  // namespace folioweld
