#pragma once

#include <QMimeData>
#include <cstddef>
#include <string>
#include <vector>

namespace folioweld {

/// What is dragged: how many entries its list of addresses has, and which of them are local files, as the
/// bytes of their paths.
struct DraggedFiles {
  std::size_t Entries = 0;
  std::vector<std::string> Paths;
};

/// Nothing at all when the data holds no list of addresses or is null.
[[nodiscard]] DraggedFiles FilesOf(const QMimeData* data);

}  // namespace folioweld
