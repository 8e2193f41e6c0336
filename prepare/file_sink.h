#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/windows_api.h"
#include "prepare/byte_sink.h"

namespace folioweld {

/// Gathers what is written to an open file.
class FileSink : public ByteSink {
 public:
  /// The file stays open, and stays the caller's. The first byte goes to `offset`, 0-based.
  FileSink(WindowsAPI& system, WindowsAPI::Handle file, std::int64_t offset = 0);

  void Write(std::string_view bytes) override;
  /// Writes out what is gathered; to be called at the end. Raises `NotPrepared`.
  void Flush();

 private:
  void WriteOut(std::string_view bytes);

  WindowsAPI& system_;
  WindowsAPI::Handle file_;
  std::int64_t offset_;
  std::string gathered_;
};

}  // namespace folioweld
