#include "dirmerge/prepare_program.h"

namespace folioweld {

std::string FindPrepareProgram(WindowsAPI& system) {
  const auto own = system.GetModuleFileName();
  if (!own.Ok()) return {};
  const std::string folder = own.Value().substr(0, own.Value().rfind('/') + 1);
  for (const char* const name : {"folioweld-prepare", FOLIOWELD_PRIVATE_FOLDER "/folioweld-prepare"}) {
    std::string program = folder + name;
    const auto found = system.GetFileAttributes(program);
    if (found.Ok() && found.Value().Kind == FileKind::Regular) return program;
  }
  return {};
}

}  // namespace folioweld
