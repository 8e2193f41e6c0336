#pragma once

#include <string>

#include "platform/windows_api.h"
#include "prepare/prepared_copy.h"

namespace folioweld {

/// An input, open, and the output that its copy goes to.
struct OpenPair {
  WindowsAPI::Handle Input = -1;
  WindowsAPI::Handle Output = -1;
  // Under which the engine opens them for reading.
  std::string InputPath;
  std::string OutputPath;
};

struct Preparation {
  std::string Reason;  ///< why the input had to be prepared
  CopyReport Copy;
};

/// Writes a copy of the input to the output and has the engine read it; neither is closed. Raises
/// `NotPrepared` with the reason when there is no copy that the engine joins without a word; what the output
/// holds then is of no use. `password` may be empty.
[[nodiscard]] Preparation Prepare(WindowsAPI& system, const OpenPair& files, const std::string& password);

}  // namespace folioweld
