#pragma once

#include <string>
#include <string_view>

#include "prepare/libqpdf.h"

namespace folioweld {

/// The bytes as UTF-8; those of a name that is not UTF-8 are taken for Latin-1.
[[nodiscard]] std::string AsUtf8(std::string_view bytes);

/// A string for readers, of bytes of the user's: a name, or an argument.
[[nodiscard]] QPDFObjectHandle TextString(std::string_view bytes);

/// Whether a string is one that a reader would show nothing of.
[[nodiscard]] bool IsBlank(QPDFObjectHandle string);

}  // namespace folioweld
