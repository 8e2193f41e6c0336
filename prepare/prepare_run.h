#pragma once

#include "platform/windows_api.h"
#include "prepare/prepare_arguments.h"

namespace folioweld {

enum PrepareStatus : int {
  kCopyWritten = 0,
  kNoCopy = 1,
  kNotUnderstood = 2,
  kCopyRepaired = 3  ///< written, but of a document that had to be repaired
};

/// Does what the arguments ask for and tells it on standard error.
[[nodiscard]] PrepareStatus RunPrepare(WindowsAPI& system, const PrepareArguments& arguments);

}  // namespace folioweld
