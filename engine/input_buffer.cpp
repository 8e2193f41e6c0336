#include "engine/input_buffer.h"

#include <algorithm>

#include "platform/retry.h"

namespace folioweld {

namespace {
constexpr std::int64_t kSmallWindow = 4 * 1024;
/// Larger ones save few calls and cost memory, which a short run has to get from the system first.
constexpr std::int64_t kLargeWindow = 64 * 1024;
}  // namespace

SystemError ReadFully(WindowsAPI& system, WindowsAPI::Handle file, std::int64_t offset, char* bytes,
                      std::int64_t count) {
  const auto all = static_cast<std::size_t>(count);
  return TransferAll(all, [&](std::size_t done) {
    return system.ReadFile(file, offset + static_cast<std::int64_t>(done), bytes + done, all - done);
  });
}

InputBuffer::InputBuffer(WindowsAPI& system, WindowsAPI::Handle file, std::int64_t length)
    : system_(system), file_(file), length_(length) {}

SystemError InputBuffer::Read(std::int64_t offset, char* bytes, std::int64_t count) {
  const bool atHand = offset >= start_ && offset + count <= start_ + size_;
  if (count > kSmallWindow && !atHand) return ReadFully(system_, file_, offset, bytes, count);
  const auto view = View(offset, count);
  if (view.Ok()) std::copy(view.Value().begin(), view.Value().end(), bytes);
  return view.Error();
}

SystemError InputBuffer::Fill(std::int64_t offset, std::int64_t count) {
  // A short jump ahead passes over a stream or a line that nobody asked for: reading on is cheaper.
  const bool followsOn = size_ > 0 && offset >= start_ && offset <= start_ + size_ + kSmallWindow;
  const std::int64_t wanted = followsOn ? std::clamp(size_ * 4, kSmallWindow, kLargeWindow) : kSmallWindow;
  const std::int64_t size = std::min(std::max(wanted, count), length_ - offset);
  size_ = 0;
  if (capacity_ < size) {
    bytes_ = std::make_unique_for_overwrite<char[]>(static_cast<std::size_t>(size));
    capacity_ = size;
  }
  const SystemError error = ReadFully(system_, file_, offset, bytes_.get(), size);
  if (error) return error;
  start_ = offset;
  size_ = size;
  return {};
}

}  // namespace folioweld
