#pragma once

#include <string>

namespace folioweld::testing {

// What the builder's passes show on the second status line, and what is added to it when one fails.
inline const std::string kPass3 = "Pass #3 of building output file: paste catalogs of pages together";
inline const std::string kPass4 = "Pass #4 of building output file: Write the output file";
inline const std::string kFailed = "   -> FAILED or cancelled";

/// Longer than the tail that the acceptance test reads.
inline const std::string kNoDocument = "this is no document at all, and it is longer than forty bytes";

}  // namespace folioweld::testing
