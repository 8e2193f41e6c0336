#pragma once

#include <QMimeData>
#include <string>
#include <vector>

namespace folioweld {

/// The local files of dragged data, as the bytes of their paths; what is no local file is left out.
[[nodiscard]] std::vector<std::string> DraggedFiles(const QMimeData* data);

}  // namespace folioweld
