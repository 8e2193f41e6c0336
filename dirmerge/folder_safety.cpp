#include "dirmerge/folder_safety.h"

#include "dirmerge/paths.h"

namespace folioweld {

namespace {

constexpr std::uint32_t kSticky = 01000;
constexpr std::uint32_t kGroupWrites = 020;
constexpr std::uint32_t kOthersWrite = 02;

bool IsTrusted(std::uint32_t owner, const UserIds& user) {
  return owner == user.User || owner == 0 || owner == user.OverflowUser;
}

}  // namespace

std::string WhyFolderIsUnsafe(WindowsAPI& system, const std::string& folder) {
  const auto information = system.GetFileAttributes(folder);
  if (!information.Ok()) return information.Error().Words();
  const FileInformation& found = information.Value();
  const UserIds user = system.GetUserIds();
  if (!IsTrusted(found.Owner, user)) return "the folder belongs to another user";
  if ((found.Mode & kSticky) == 0) {
    if ((found.Mode & kOthersWrite) != 0) return "everybody may write to the folder and it has no sticky bit";
    if ((found.Mode & kGroupWrites) != 0 && found.Group != user.Group) {
      return "another group may write to the folder and it has no sticky bit";
    }
  }
  const CurrentDirectoryKeeper keeper(system);
  const SystemError error = system.SetCurrentDirectory(folder);
  return error ? error.Words() : std::string();
}

}  // namespace folioweld
