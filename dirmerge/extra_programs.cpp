#include "dirmerge/extra_programs.h"

namespace folioweld {

std::string FindExtraProgram(WindowsAPI& system, const std::string& name) {
  const auto own = system.GetModuleFileName();
  if (!own.Ok()) return {};
  const std::string folder = own.Value().substr(0, own.Value().rfind('/') + 1);
  for (const char* const below : {"", FOLIOWELD_PRIVATE_FOLDER "/"}) {
    std::string program = folder;
    program.append(below).append(name);
    const auto found = system.GetFileAttributes(program);
    if (found.Ok() && found.Value().Kind == FileKind::Regular) return program;
  }
  return {};
}

}  // namespace folioweld
