#include "prepare/system_input.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <stdexcept>
#include <string_view>

#include "engine/lexer.h"
#include "platform/retry.h"
#include "prepare/not_prepared.h"

namespace folioweld {

namespace {

constexpr std::size_t kWindow = 64 * 1024;

}  // namespace

SystemInput::SystemInput(WindowsAPI& system, WindowsAPI::Handle file, std::int64_t size)
    : system_(system), file_(file), size_(size), window_(std::make_unique_for_overwrite<char[]>(kWindow)) {}

void SystemInput::CheckReads() const {
  if (system_.StopSignal() != 0) throw NotPrepared("stopped by a signal");
  if (error_) throw NotPrepared("it cannot be read: " + error_.Words());
}

std::string_view SystemInput::Window() {
  if (offset_ >= size_) return {};
  // What is near the end is read backwards: the trailer, the table, and then objects.
  if (!IsThere()) Fill(std::min(offset_, std::max<qpdf_offset_t>(0, size_ - qpdf_offset_t{kWindow})));
  // A call may read less than it was asked for.
  if (!IsThere()) Fill(offset_);
  const auto index = static_cast<std::size_t>(offset_ - windowStart_);
  return {window_.get() + index, buffered_ - index};
}

bool SystemInput::IsThere() const {
  return offset_ >= windowStart_ && offset_ < windowStart_ + static_cast<qpdf_offset_t>(buffered_);
}

void SystemInput::Fill(qpdf_offset_t start) {
  CheckReads();
  windowStart_ = start;
  buffered_ = 0;
  const auto part = RetryInterrupted([&] { return system_.ReadFile(file_, start, window_.get(), kWindow); });
  if (!part.Ok()) error_ = part.Error();
  // It was longer when it was opened.
  if (part.Ok() && part.Value() == 0) error_ = SystemError{EIO};
  CheckReads();
  buffered_ = part.Value();
}

qpdf_offset_t SystemInput::findAndSkipNextEOL() {
  const auto pass = [&](bool lineEnds) {
    for (std::string_view bytes = Window(); !bytes.empty(); bytes = Window()) {
      const std::size_t end = lineEnds ? bytes.find_first_not_of(kLineEnd) : bytes.find_first_of(kLineEnd);
      offset_ += static_cast<qpdf_offset_t>(std::min(end, bytes.size()));
      if (end != std::string_view::npos) return;
    }
  };
  pass(false);
  const qpdf_offset_t lineEnd = offset_;
  pass(true);
  return lineEnd;
}

void SystemInput::seek(qpdf_offset_t offset, int whence) {
  const qpdf_offset_t from = whence == SEEK_SET ? 0 : whence == SEEK_CUR ? offset_ : size_;
  if (from + offset < 0) throw std::runtime_error("a place before the file's beginning");
  offset_ = from + offset;
}

size_t SystemInput::read(char* bytes, size_t length) {
  last_offset = offset_;
  std::size_t done = 0;
  while (done < length) {
    const std::string_view part = Window().substr(0, length - done);
    if (part.empty()) break;
    std::memcpy(bytes + done, part.data(), part.size());
    done += part.size();
    offset_ += static_cast<qpdf_offset_t>(part.size());
  }
  return done;
}

void SystemInput::unreadCh(char /*ch*/) {
  if (offset_ > 0) --offset_;
}

}  // namespace folioweld
