#include "ui/dragged_files.h"

#include <QSysInfo>

#include "dirmerge/uri_list.h"

namespace folioweld {

std::vector<std::string> DraggedFiles(const QMimeData* data) {
  if (data == nullptr) return {};
  return FilesOfUriList(data->data(QStringLiteral("text/uri-list")).toStdString(),
                        QSysInfo::machineHostName().toStdString());
}

}  // namespace folioweld
