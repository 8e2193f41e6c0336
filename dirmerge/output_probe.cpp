#include "dirmerge/output_probe.h"

#include <algorithm>
#include <cerrno>
#include <utility>

#include "platform/retry.h"

namespace folioweld {

OutputProbe::OutputProbe(FileModule& files, std::string path) : files_(files), path_(std::move(path)) {}

OutputProbe::~OutputProbe() {
  RemoveEmpty();
}

void OutputProbe::RemoveEmpty() {
  if (!std::exchange(created_, false)) return;
  const auto now = files_.System().GetLinkAttributes(path_);
  if (now.Ok() && now.Value().Identity == identity_ && now.Value().Size == 0) files_.DeleteFile(path_);
}

bool OutputProbe::Open(const std::vector<FileIdentity>& inputs) {
  WindowsAPI& system = files_.System();
  const auto before = system.GetLinkAttributes(path_);
  const bool missing = !before.Ok() && before.Error().Code == ENOENT;
  const auto file = RetryInterrupted([&] { return system.CreateFile(path_, OpenMode::WriteKeep); });
  error_ = file.Error();
  if (!file.Ok()) return false;
  const auto information = system.GetFileInformationByHandle(file.Value());
  static_cast<void>(system.CloseHandle(file.Value()));
  if (!information.Ok()) {
    error_ = information.Error();
    if (missing) files_.DeleteFile(path_);
    return false;
  }
  identity_ = information.Value().Identity;
  created_ = missing;
  return information.Value().Kind == FileKind::Regular &&
         std::find(inputs.begin(), inputs.end(), identity_) == inputs.end();
}

}  // namespace folioweld
