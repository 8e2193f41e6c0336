#include "ui/file_names.h"

#include <QFile>
#include <QStringDecoder>
#include <QStringList>
#include <algorithm>
#include <string>

#include "engine/shortened_path.h"

namespace folioweld {

namespace {

constexpr char16_t kReplacement = 191;

qsizetype Size(std::string_view bytes) {
  return static_cast<qsizetype>(bytes.size());
}

QString Latin1(std::string_view bytes) {
  return QString::fromLatin1(bytes.data(), Size(bytes));
}

bool DecodeUtf8(std::string_view bytes, QString& text) {
  QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
  text = decoder.decode(QByteArrayView(bytes.data(), Size(bytes)));
  return !decoder.hasError();
}

/// Length of the well-formed UTF-8 sequence at the front, 0 when there is none.
std::size_t SequenceLength(std::string_view bytes) {
  QString ignored;
  for (std::size_t length = 1; length <= std::min<std::size_t>(4, bytes.size()); ++length) {
    if (DecodeUtf8(bytes.substr(0, length), ignored)) return length;
  }
  return 0;
}

bool IsControl(char32_t code) {
  return code < 32 || (code >= 127 && code <= 159);
}

}  // namespace

QString ShownText(std::string_view bytes) {
  QString text;
  if (DecodeUtf8(bytes, text)) return text;
  text.clear();
  while (!bytes.empty()) {
    const std::size_t length = SequenceLength(bytes);
    const std::string_view part = bytes.substr(0, std::max<std::size_t>(length, 1));
    text += length == 0 ? Latin1(part) : QString::fromUtf8(part.data(), Size(part));
    bytes.remove_prefix(part.size());
  }
  return text;
}

QString ShownPath(const std::string& path, int mostBytes) {
  QString shown = ShownText(ShortenPath(path, mostBytes));
  for (QChar& character : shown) {
    if (IsControl(character.unicode())) character = QChar(kReplacement);
  }
  return shown;
}

QString ShownLogLine(std::string_view line) {
  QString text;
  if (!DecodeUtf8(line, text)) text = Latin1(line);
  QString shown;
  shown.reserve(text.size());
  for (const uint code : text.toUcs4()) {
    const bool lineEnd = code == u'\r' || code == u'\n';
    shown += QChar((IsControl(code) && !lineEnd) || code >= 256 ? kReplacement : static_cast<char16_t>(code));
  }
  return shown;
}

QString ShownLog(std::string_view text) {
  QString shown;
  while (!text.empty()) {
    const std::size_t end = text.find("\r\n");
    const std::size_t next = end == std::string_view::npos ? text.size() : end + 2;
    shown += ShownLogLine(text.substr(0, next));
    text.remove_prefix(next);
  }
  return shown;
}

QString PathForDialog(const std::string& path) {
  return QFile::decodeName(QByteArray::fromStdString(path));
}

std::string PathFromDialog(const QString& answer, const std::string& given) {
  if (!given.empty() && answer == PathForDialog(given)) return given;
  return QFile::encodeName(answer).toStdString();
}

}  // namespace folioweld
