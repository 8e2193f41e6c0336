#include "dirmerge/left_temporaries.h"

#include <algorithm>
#include <string_view>

namespace folioweld {

namespace {

/// The trailer and what follows it take less in every joined document, and in most prepared copies.
constexpr std::int16_t kTail = 400;

/// "Pdf", four digits as they are made, ".tmp".
bool IsNamedLikeOne(std::string_view name) {
  return name.size() == 11 && name.starts_with("Pdf") && name.ends_with(".tmp") &&
         name.substr(3, 4).find_first_not_of("0123456789ABCDEF") == std::string_view::npos;
}

/// By the trailer, which no other program writes in just this way.
bool EndsAsOurs(FileModule& files, const std::string& path) {
  const std::int16_t file = files.OpenForBinaryRead(path);
  const std::int32_t length = files.FileLength(file);
  std::string tail;
  const bool read = files.ReadBlock(file, std::max(length - kTail, 0) + 1, kTail, tail) > 0;
  // It was only read.
  static_cast<void>(files.Close(file));
  const auto ends = [&](std::string_view trailer, std::string_view end) {
    return tail.find(trailer) != std::string::npos && tail.ends_with(end);
  };
  return read && (ends("trailer\r\n<< /Size ", "\r\n%%EOF\r\n") ||
                  // A prepared copy.
                  ends("\ntrailer\n<< /Size ", "\n%%EOF\n"));
}

}  // namespace

bool IsLeftTemporary(FileModule& files, const std::string& path, const std::string& name) {
  if (!IsNamedLikeOne(name)) return false;
  WindowsAPI& system = files.System();
  const auto found = system.GetLinkAttributes(path);
  if (!found.Ok() || found.Value().Kind != FileKind::Regular || found.Value().Mode != 0600) return false;
  if (found.Value().Owner != system.GetUserIds().User) return false;
  return found.Value().Size == 0 || EndsAsOurs(files, path);
}

}  // namespace folioweld
