#include "prepare/opened_file.h"

#include "platform/retry.h"
#include "prepare/not_prepared.h"

namespace folioweld {

OpenedFile::OpenedFile(WindowsAPI& system, const std::string& path, OpenMode mode, const std::string& name)
    : system_(system) {
  const auto file = RetryInterrupted([&] { return system.CreateFile(path, mode); });
  if (!file.Ok()) throw NotPrepared(name + " cannot be opened: " + file.Error().Words());
  handle_ = file.Value();
}

OpenedFile::~OpenedFile() {
  // It was only read: closing it cannot lose anything.
  static_cast<void>(system_.CloseHandle(handle_));
}

std::string PathOf(WindowsAPI::Handle file) {
  return "/dev/fd/" + std::to_string(file);
}

FileInformation LookAt(WindowsAPI& system, WindowsAPI::Handle file) {
  const auto information = system.GetFileInformationByHandle(file);
  if (!information.Ok()) throw NotPrepared("it cannot be read: " + information.Error().Words());
  if (information.Value().Kind != FileKind::Regular) throw NotPrepared("it is no file");
  return information.Value();
}

}  // namespace folioweld
