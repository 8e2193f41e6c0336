#include "app/window_program.h"

#include <cerrno>

namespace folioweld {

namespace {

bool IsSet(WindowsAPI& system, const char* name) {
  const auto value = system.GetEnvironmentVariable(name);
  return value && !value->empty();
}

}  // namespace

bool HasScreen(WindowsAPI& system) {
  return IsSet(system, "DISPLAY") || IsSet(system, "WAYLAND_DISPLAY");
}

SystemError BecomeWindowProgram(WindowsAPI& system, const std::vector<std::string>& arguments) {
  const auto own = system.GetModuleFileName();
  if (!own.Ok()) return own.Error();
  const std::string folder = own.Value().substr(0, own.Value().rfind('/') + 1);
  SystemError error{ENOENT};
  for (const std::string& program :
       {folder + "folioweld-window", folder + FOLIOWELD_PRIVATE_FOLDER "/folioweld-window"}) {
    std::vector<std::string> all{program};
    all.insert(all.end(), arguments.begin(), arguments.end());
    const SystemError tried = system.ReplaceProcess(program, all);
    if (tried.Code != ENOENT) error = tried;
  }
  return error;
}

}  // namespace folioweld
