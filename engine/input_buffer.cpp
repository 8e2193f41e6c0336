#include "engine/input_buffer.h"

#include <algorithm>

#include "platform/retry.h"

namespace folioweld {

namespace {
/// Little more than the callers' blocks: most of what lies after a jump is a stream, which is not looked at.
constexpr std::int64_t kSmallWindow = 1024;
/// Larger ones save few calls and cost memory, which a short run has to get from the system first.
constexpr std::int64_t kLargeWindow = 64 * 1024;
/// Reading on over this much is cheaper than another call.
constexpr std::int64_t kShortJump = 4 * 1024;
/// The acceptance test needs no more; whoever goes on reads most of the file.
constexpr int kFewReads = 4;
}  // namespace

SystemError ReadFully(WindowsAPI& system, WindowsAPI::Handle file, std::int64_t offset, char* bytes,
                      std::int64_t count) {
  const auto all = static_cast<std::size_t>(count);
  return TransferAll(all, [&](std::size_t done) {
    return system.ReadFile(file, offset + static_cast<std::int64_t>(done), bytes + done, all - done);
  });
}

InputBuffer::InputBuffer(WindowsAPI& system, WindowsAPI::Handle file, std::int64_t length,
                         SpareFileBuffers& spare)
    : system_(system), file_(file), length_(length), spare_(spare) {}

SystemError InputBuffer::Read(std::int64_t offset, char* bytes, std::int64_t count) {
  const bool atHand = offset >= start_ && offset + count <= start_ + size_;
  if (count > kShortJump && !atHand) return ReadFully(system_, file_, offset, bytes, count);
  const auto view = View(offset, count);
  if (view.Ok()) std::copy(view.Value().begin(), view.Value().end(), bytes);
  return view.Error();
}

std::int64_t InputBuffer::CopyTo(WindowsAPI::Handle to, std::int64_t toOffset, std::int64_t offset,
                                 std::int64_t count) {
  const auto copied = RetryInterrupted(
      [&] { return system_.CopyFileBytes(file_, offset, to, toOffset, static_cast<std::size_t>(count)); });
  return copied.Ok() ? static_cast<std::int64_t>(copied.Value()) : 0;
}

SystemError InputBuffer::Fill(std::int64_t offset, std::int64_t count) {
  std::int64_t from = offset;
  std::int64_t wanted = kSmallWindow;
  if (length_ <= static_cast<std::int64_t>(kFileBufferSize) && ++fills_ > kFewReads) {
    from = 0;
    wanted = length_;
  } else if (size_ > 0 && offset >= start_ && offset <= start_ + size_ + kShortJump) {
    wanted = std::clamp(size_ * 4, kSmallWindow, kLargeWindow);
  }
  const std::int64_t size = std::min(std::max(wanted, count), length_ - from);
  size_ = 0;
  if (!bytes_) bytes_ = spare_.Take();
  const SystemError error = ReadFully(system_, file_, from, bytes_.get(), size);
  if (error) return error;
  start_ = from;
  size_ = size;
  return {};
}

}  // namespace folioweld
