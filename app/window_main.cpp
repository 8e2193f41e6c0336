// folioweld-window: the main window.

#include <string>
#include <vector>

#include "ui/window_program.h"

int main(int argc, char** argv) {
  // Taken before the toolkit removes its own options: all of them belong to the command line's text.
  const std::vector<std::string> arguments(argv + (argc > 0 ? 1 : 0), argv + argc);
  return folioweld::RunWindowProgram(argc, argv, arguments);
}
