#pragma once

#include "dirmerge/arguments.h"
#include "ui/window_shell.h"

namespace folioweld {

/// Runs the window program: what the arguments ask for is joined first. argc and argv are the toolkit's;
/// `reader` may be empty. Returns the exit status.
[[nodiscard]] int RunWindowProgram(int argc, char** argv, const Arguments& arguments, LogReader reader);

}  // namespace folioweld
