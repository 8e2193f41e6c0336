#pragma once

#include "platform/windows_api.h"
#include "prepare/carry/carry_arguments.h"

namespace folioweld {

enum CarryStatus : int {
  kCarried = 0,
  kNothingCarried = 1,  ///< the file may have got longer, and is not to be used like that
  kCarryNotUnderstood = 2,
  kCarriedWithLosses = 3
};

/// Does what the arguments ask for and tells it on standard error, a line each: "did: ", "failed: ", or
/// "lost: " with the document's place, which counts from 1, and the part, such as "2: outline: ". The part
/// "catalog" is all of what the document's catalog holds.
[[nodiscard]] CarryStatus RunCarry(WindowsAPI& system, const CarryArguments& arguments);

}  // namespace folioweld
