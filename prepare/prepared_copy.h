#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "prepare/byte_sink.h"
#include "prepare/libqpdf.h"

namespace folioweld {

/// What was done to a document, one line each, in words that follow its name and a colon.
struct CopyReport {
  std::vector<std::string> Done;
  std::vector<std::string> Lost;
  std::vector<std::string> Repaired;
};

/// Writes a copy of the document in the plain form that the engine reads: all that its catalog and its
/// information dictionary lead to, every stream's bytes as they are, without protection. The same document
/// gives the same bytes. What libqpdf repairs meanwhile is in the report. Raises `NotPrepared` and what
/// libqpdf raises.
[[nodiscard]] CopyReport WriteCopy(QPDF& document, ByteSink& sink);

}  // namespace folioweld
