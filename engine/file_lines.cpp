// The positioned reads of FileModule: lines and blocks.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>

#include "engine/activity_log.h"
#include "engine/file_module.h"
#include "engine/lexer.h"
#include "engine/line_cursor.h"
#include "engine/open_file.h"

namespace folioweld {

namespace {

constexpr char kLinePrefix[] = "[ReadLineFromRandomFile]=>";

}  // namespace

inline std::int32_t FileModule::ViewUpTo(std::int16_t fileNumber, std::int64_t position, std::int16_t count,
                                         std::string_view& bytes) {
  if (fileNumber < 0 || position < 0 || count < 1) return kBadArguments;
  OpenFile* const file = Find(fileNumber);
  const std::int32_t length = file == nullptr ? -1 : file->Length();
  if (length < 0) return kNoLength;
  if (position > length) return kBeyondEnd;
  if (position == 0) return kSeekFailed;
  if (!file->Input) return kReadFailed;
  const auto view = file->Input->View(position - 1, std::min<std::int64_t>(count, length - position + 1));
  if (!view.Ok()) {
    lastError_ = view.Error();
    return kReadFailed;
  }
  bytes = view.Value();
  return 0;
}

std::int32_t FileModule::ReadLineChunk(std::int16_t fileNumber, std::int32_t position,
                                       std::int16_t bufferSize, std::string& line, std::int32_t& lineStart,
                                       bool /*logging*/) {
  line.clear();
  lineStart = -1;
  std::string_view bytes;
  std::int32_t code = ViewUpTo(fileNumber, position, bufferSize, bytes);
  if (code < 0) return code;
  const std::size_t first = kLineEndSet.Skip(bytes, 0);
  const std::size_t end = FindLineEnd(bytes, first);
  const std::int64_t start = position + static_cast<std::int64_t>(first);
  // After line ends that end the longest file there is no position.
  if (start > std::numeric_limits<std::int32_t>::max()) return kBeyondEnd;
  line.assign(bytes.substr(first, end - first));
  lineStart = static_cast<std::int32_t>(start);
  return end < bytes.size() ? lineStart : static_cast<std::int32_t>(kNoLineEnd);
}

std::int32_t FileModule::ContinueLine(std::int16_t fileNumber, std::int64_t position, std::int16_t bufferSize,
                                      std::string& line) {
  std::string_view bytes;
  std::int32_t code = ViewUpTo(fileNumber, position, bufferSize, bytes);
  if (code < 0) return code;
  const std::size_t end = FindLineEnd(bytes, 0);
  line.append(bytes.substr(0, end));
  return end < bytes.size() ? 0 : static_cast<std::int32_t>(kNoLineEnd);
}

std::int32_t FileModule::ReadLineFromRandomFile(std::int16_t fileNumber, std::int32_t position,
                                                std::int16_t bufferSize, std::int16_t mostTries,
                                                std::string& line, bool logging) {
  std::int32_t lineStart = -1;
  std::int16_t tries = 1;
  std::int32_t code = ReadLineChunk(fileNumber, position, bufferSize, line, lineStart, logging);
  const auto afterLine = [&] { return lineStart + static_cast<std::int64_t>(line.size()); };
  while (code == kNoLineEnd && tries < mostTries) {
    ++tries;
    if (line.empty()) {
      // Nothing but line ends so far: the line begins somewhere after them.
      code = ReadLineChunk(fileNumber, lineStart, bufferSize, line, lineStart, logging);
    } else {
      code = ContinueLine(fileNumber, afterLine(), bufferSize, line);
    }
  }
  if (code == kNoLineEnd && !line.empty()) {
    // A line that fills the last buffer to its border is complete when its end stands right after it.
    std::string none;
    if (ContinueLine(fileNumber, afterLine(), 1, none) == 0) code = 0;
  }
  if (logging && tries >= 2) LogRetries(bufferSize, tries, code);
  if (code >= 0) return lineStart;
  if (code != kNoLineEnd) line.clear();
  return code;
}

const InputBuffer* FileModule::Window(std::int16_t fileNumber) const {
  const OpenFile* const file = Find(fileNumber);
  return file != nullptr && file->Input ? &*file->Input : nullptr;
}

void FileModule::LogRetries(std::int16_t bufferSize, std::int16_t tries, std::int32_t code) {
  const std::int32_t grown = std::int32_t{tries} * bufferSize;
  if (log_ == nullptr || grown > std::numeric_limits<std::int16_t>::max()) return;
  if (code >= 0) {
    log_->AddLogLine(kLinePrefix +
                     ("*** Warning! *** Buffer size had to be increased from " + std::to_string(bufferSize) +
                      " to " + std::to_string(grown) + " *** Warning! <="));
  } else if (code == kNoLineEnd) {
    log_->AddLogLine(kLinePrefix +
                     ("***** WARNING!!! ***** Buffer size remained too small although I retried " +
                      std::to_string(tries) + " times ***** WARNING!!! <="));
  }
}

std::int16_t FileModule::ReadBlock(std::int16_t fileNumber, std::int32_t position, std::int16_t count,
                                   std::string& bytes) {
  bytes.clear();
  std::string_view view;
  std::int32_t code = ViewUpTo(fileNumber, position, count, view);
  if (code < 0) return static_cast<std::int16_t>(code);
  bytes.assign(view);
  return static_cast<std::int16_t>(view.size());
}

}  // namespace folioweld
