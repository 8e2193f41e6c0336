#include "ui/dragged_files.h"

#include <QSysInfo>

#include "dirmerge/uri_list.h"

namespace folioweld {

DraggedFiles FilesOf(const QMimeData* data) {
  if (data == nullptr) return {};
  const std::string list = data->data(QStringLiteral("text/uri-list")).toStdString();
  return {CountOfUriList(list), FilesOfUriList(list, QSysInfo::machineHostName().toStdString())};
}

}  // namespace folioweld
