#pragma once

#include "dirmerge/arguments.h"

namespace folioweld {

/// Runs the window program: what the arguments ask for is joined first. argc and argv are the toolkit's.
/// Returns the exit status.
[[nodiscard]] int RunWindowProgram(int argc, char** argv, const Arguments& arguments);

}  // namespace folioweld
