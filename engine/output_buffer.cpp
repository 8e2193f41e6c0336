#include "engine/output_buffer.h"

#include <algorithm>
#include <utility>

#include "platform/retry.h"

namespace folioweld {

namespace {
/// Copied ranges are read in steps, so that whoever copies can look around in between.
constexpr std::int64_t kLongestRange = 1024 * 1024;
/// So many bytes are worth copying from file to file: whole blocks, as file systems take those in with less
/// work, with the bytes before and after them gathered.
constexpr std::int64_t kLongRange = 256 * 1024;
constexpr std::int64_t kBlock = 64 * 1024;
/// So few bytes are no part of a long range: when they are in memory, they are copied there and then.
constexpr std::int64_t kAtOnce = 512;
}  // namespace

OutputBuffer::OutputBuffer(WindowsAPI& system, WindowsAPI::Handle file, SpareFileBuffers& spare)
    : system_(system), file_(file), spare_(spare), gathered_(spare.Take()) {}

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

SystemError OutputBuffer::Copy(std::int64_t offset, InputBuffer& source, std::int64_t fromOffset,
                               std::int64_t count) {
  if (range_.Count > 0 && range_.Source == &source && range_.FromOffset + range_.Count == fromOffset &&
      End() + range_.Count == offset) {
    range_.Count += count;
    return range_.Count < kLongestRange ? SystemError{} : SettleRange();
  }
  if (count <= kAtOnce) {
    const std::string_view bytes = source.AtHand(fromOffset, count);
    if (static_cast<std::int64_t>(bytes.size()) == count) return Write(offset, bytes);
  }
  const SystemError error = Write(offset, {});
  if (!error) range_ = {&source, fromOffset, count};
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
  Range range = std::exchange(range_, {});
  SystemError error = range.Count >= kLongRange ? CopyBlocks(range) : SystemError{};
  while (!error && range.Count > 0) {
    error = MakeRoom();
    if (!error) error = GatherFrom(range, Room(static_cast<std::size_t>(range.Count)));
  }
  return error;
}

SystemError OutputBuffer::CopyBlocks(Range& range) {
  const std::size_t gap = (kBlock - static_cast<std::size_t>(End()) % kBlock) % kBlock;
  SystemError error = gap > 0 ? GatherFrom(range, {gathered_.get() + size_, gap}) : SystemError{};
  if (!error) error = WriteGathered();
  if (error) return error;
  const std::int64_t whole = range.Count - range.Count % kBlock;
  const std::int64_t copied = range.Source->CopyTo(file_, start_, range.FromOffset, whole);
  start_ += copied;
  range.Skip(copied);
  return {};
}

SystemError OutputBuffer::GatherFrom(Range& range, std::span<char> room) {
  const auto count = static_cast<std::int64_t>(room.size());
  const SystemError error = range.Source->Read(range.FromOffset, room.data(), count);
  if (error) return error;
  size_ += room.size();
  range.Skip(count);
  return {};
}

}  // namespace folioweld
