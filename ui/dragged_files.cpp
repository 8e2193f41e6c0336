#include "ui/dragged_files.h"

#include <QSysInfo>
#include <QUrl>

namespace folioweld {

namespace {

bool IsHere(const QUrl& url) {
  const QString host = url.host();
  return host.isEmpty() || host == QStringLiteral("localhost") ||
         host.compare(QSysInfo::machineHostName(), Qt::CaseInsensitive) == 0;
}

/// Decoded byte by byte: the name need not be UTF-8.
std::string PathOf(const QUrl& url) {
  const QByteArray encoded = url.path(QUrl::FullyEncoded).toLatin1();
  return QByteArray::fromPercentEncoding(encoded).toStdString();
}

}  // namespace

std::vector<std::string> DraggedFiles(const QMimeData* data) {
  std::vector<std::string> files;
  if (data == nullptr || !data->hasUrls()) return files;
  for (const QUrl& url : data->urls()) {
    if (!url.isLocalFile() || !IsHere(url)) continue;
    std::string path = PathOf(url);
    const bool usable = path.starts_with('/') && path.find('\0') == std::string::npos;
    if (usable) files.push_back(std::move(path));
  }
  return files;
}

}  // namespace folioweld
