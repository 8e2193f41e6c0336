#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>

#include "engine/input_buffer.h"
#include "engine/output_buffer.h"
#include "platform/windows_api.h"

namespace folioweld {

/// An open file of `FileModule`, for its sources only.
struct OpenFile {
  WindowsAPI::Handle Handle = -1;
  FileInformation Information;           ///< as it was when opened
  std::optional<FileIdentity> Original;  ///< the document that it is a prepared copy of
  std::optional<InputBuffer> Input;
  std::optional<OutputBuffer> Output;

  /// -1 when it is above 2,147,483,647.
  [[nodiscard]] std::int32_t Length() const {
    if (Information.Size > std::numeric_limits<std::int32_t>::max()) return -1;
    return static_cast<std::int32_t>(Information.Size);
  }
};

}  // namespace folioweld
