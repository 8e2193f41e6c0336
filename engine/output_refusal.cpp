#include "engine/output_refusal.h"

#include <cerrno>

namespace folioweld {

std::string WhyNoOutput(WindowsAPI& system, const std::string& path, SystemError error,
                        const std::vector<NamedDocument>& documents) {
  const auto there = system.GetLinkAttributes(path);
  if (!there.Ok()) return (error ? error : there.Error()).Words();
  switch (there.Value().Kind) {
    case FileKind::Link:
      return "it is a link";
    case FileKind::Directory:
      return "it is a folder";
    case FileKind::Other:
      return "it is a device, a pipe or a socket";
    case FileKind::Regular:
      break;
  }
  for (const NamedDocument& document : documents) {
    if (document.Identity == there.Value().Identity) return "it is the document \"" + document.Name + "\"";
  }
  return error.Code == EBUSY ? "another program is writing it" : error.Words();
}

}  // namespace folioweld
