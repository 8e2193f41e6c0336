#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace folioweld::fuzz {

/// The bytes as text.
[[nodiscard]] std::string_view TextOf(const std::uint8_t* data, std::size_t size);

/// Ends the program with the words when something that always has to hold does not.
void Require(bool holds, const char* what);

/// A document of the bytes: header in front, and after them a cross-reference section that lists every
/// "n 0 obj" that begins a line. A fuzzer cannot keep offsets right by itself, and would otherwise hardly
/// ever get beyond them. `trailer` stands in the trailer beside /Size.
[[nodiscard]] std::string NumberedDocument(std::string_view body, std::string_view trailer);

}  // namespace folioweld::fuzz
