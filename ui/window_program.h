#pragma once

#include <string>
#include <vector>

namespace folioweld {

/// Runs the window program. `arguments` is what the window takes as its command line, argc and argv are the
/// toolkit's. Returns the exit status.
[[nodiscard]] int RunWindowProgram(int argc, char** argv, const std::vector<std::string>& arguments);

}  // namespace folioweld
