#pragma once

#include <cstddef>
#include <exception>
#include <string>
#include <vector>

#include "prepare/libqpdf.h"

namespace folioweld {

/// What a copy of the document lacks, one line each. `signatures` says how many it has.
[[nodiscard]] std::vector<std::string> Losses(QPDF& document, std::size_t signatures);

/// The dictionary of a stream whose bytes are no longer protected.
[[nodiscard]] QPDFObjectHandle WithoutCryptFilters(QPDFObjectHandle dictionary);

/// As the header and the catalog have it, the higher one of both; such as "1.7".
[[nodiscard]] std::string VersionOf(QPDF& document);

/// A warning of libqpdf, with its object and offset and without the document's name.
[[nodiscard]] std::string Words(const QPDFExc& warning);

/// Of anything that is raised here or by libqpdf.
[[nodiscard]] std::string WordsOf(const std::exception& raised);

}  // namespace folioweld
