#include "engine/output_buffer.h"

#include <algorithm>

#include "platform/retry.h"

namespace folioweld {

namespace {
/// Shorter ranges are cheaper through memory than as system calls of their own.
constexpr std::int64_t kShortRange = 64 * 1024;
constexpr std::int64_t kLongestRange = 8 * 1024 * 1024;
/// Inside the system bytes move page by page. Where they stand at other places of their pages in the two
/// files, each page moves in two parts, which takes longer than large aligned writes out of memory; nor can a
/// file system share such pages between the files.
constexpr std::int64_t kPageSize = 4 * 1024;
/// So few bytes are no part of a long range: when they are in memory, they are copied there and then.
constexpr std::int64_t kAtOnce = 512;
}  // namespace

OutputBuffer::OutputBuffer(WindowsAPI& system, WindowsAPI::Handle file)
    : system_(system), file_(file), gathered_(std::make_unique_for_overwrite<char[]>(kGatherSize)) {}

std::span<char> OutputBuffer::Room(std::size_t wanted) {
  const std::size_t left = kGatherSize - static_cast<std::size_t>(End()) % kGatherSize;
  return {gathered_.get() + size_, std::min(left, wanted)};
}

SystemError OutputBuffer::MakeRoom() {
  const bool full = size_ > 0 && static_cast<std::size_t>(End()) % kGatherSize == 0;
  return full ? WriteGathered() : SystemError{};
}

SystemError OutputBuffer::WriteAnywhere(std::int64_t offset, std::string_view bytes) {
  SystemError error = SettleRange();
  if (!error && offset != End()) {
    error = WriteGathered();
    start_ = offset;
  }
  return error ? error : Gather(bytes);
}

SystemError OutputBuffer::Copy(std::int64_t offset, InputBuffer& source, WindowsAPI::Handle from,
                               std::int64_t fromOffset, std::int64_t count) {
  if (range_.Count > 0 && range_.Source == &source && range_.FromOffset + range_.Count == fromOffset &&
      End() + range_.Count == offset) {
    range_.Count += count;
    // Settled in steps, so that whoever copies can look around in between.
    return range_.Count < kLongestRange ? SystemError{} : SettleRange();
  }
  if (count <= kAtOnce) {
    const std::string_view bytes = source.AtHand(fromOffset, count);
    if (static_cast<std::int64_t>(bytes.size()) == count) return Write(offset, bytes);
  }
  const SystemError error = Write(offset, {});
  if (!error) range_ = {&source, from, fromOffset, count};
  return error;
}

SystemError OutputBuffer::Flush() {
  const SystemError error = SettleRange();
  return error ? error : WriteGathered();
}

SystemError OutputBuffer::Gather(std::string_view bytes) {
  while (!bytes.empty()) {
    const SystemError error = MakeRoom();
    if (error) return error;
    const std::span<char> room = Room(bytes.size());
    std::copy_n(bytes.begin(), room.size(), room.begin());
    bytes.remove_prefix(room.size());
    size_ += room.size();
  }
  return {};
}

SystemError OutputBuffer::WriteGathered() {
  const SystemError error = TransferAll(size_, [&](std::size_t done) {
    return system_.WriteFile(file_, start_ + static_cast<std::int64_t>(done), gathered_.get() + done,
                             size_ - done);
  });
  if (error) return error;
  start_ = End();
  size_ = 0;
  return {};
}

SystemError OutputBuffer::SettleRange() {
  if (range_.Count == 0) return {};
  Range range = range_;
  range_ = {};
  const bool pagesMatch = (range.FromOffset - End()) % kPageSize == 0;
  if (range.Count >= kShortRange && canCopyInside_ && pagesMatch) {
    const SystemError error = WriteGathered();
    if (error) return error;
    const SystemError copyError = CopyInsideSystem(range);
    if (copyError) return copyError;
  }
  return CopyThroughMemory(range);
}

SystemError OutputBuffer::CopyThroughMemory(Range range) {
  while (range.Count > 0) {
    SystemError error = MakeRoom();
    if (error) return error;
    const std::span<char> room = Room(static_cast<std::size_t>(range.Count));
    const auto count = static_cast<std::int64_t>(room.size());
    error = range.Source->Read(range.FromOffset, room.data(), count);
    if (error) return error;
    size_ += room.size();
    range.FromOffset += count;
    range.Count -= count;
  }
  return {};
}

SystemError OutputBuffer::CopyInsideSystem(Range& range) {
  while (range.Count > 0) {
    const auto part = RetryInterrupted([&] {
      return system_.CopyFileRange(range.From, range.FromOffset, file_, start_,
                                   static_cast<std::size_t>(range.Count));
    });
    // Not every pair of file systems can do this; what is left goes through memory, where an error that
    // has another cause shows again.
    if (!part.Ok() || part.Value() == 0) {
      canCopyInside_ = part.Ok();
      return {};
    }
    const auto copied = static_cast<std::int64_t>(part.Value());
    range.FromOffset += copied;
    range.Count -= copied;
    start_ += copied;
  }
  return {};
}

}  // namespace folioweld
