#include "prepare/file_sink.h"

#include "platform/retry.h"
#include "prepare/not_prepared.h"

namespace folioweld {

namespace {

constexpr std::size_t kGathered = 256 * 1024;

}  // namespace

FileSink::FileSink(WindowsAPI& system, WindowsAPI::Handle file, std::int64_t offset)
    : system_(system), file_(file), offset_(offset) {}

void FileSink::Write(std::string_view bytes) {
  if (gathered_.size() + bytes.size() > kGathered) Flush();
  if (bytes.size() >= kGathered) {
    WriteOut(bytes);
  } else {
    gathered_ += bytes;
  }
}

void FileSink::Flush() {
  WriteOut(gathered_);
  gathered_.clear();
}

void FileSink::WriteOut(std::string_view bytes) {
  if (system_.StopSignal() != 0) throw NotPrepared("stopped by a signal");
  const SystemError error = TransferAll(bytes.size(), [&](std::size_t done) {
    return system_.WriteFile(file_, offset_ + static_cast<std::int64_t>(done), bytes.data() + done,
                             bytes.size() - done);
  });
  if (error) throw NotPrepared("its copy cannot be written: " + error.Words());
  offset_ += static_cast<std::int64_t>(bytes.size());
}

}  // namespace folioweld
