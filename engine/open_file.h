#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>

#include "engine/file_module.h"
#include "engine/input_buffer.h"
#include "engine/output_buffer.h"

namespace folioweld {

// What only the sources of FileModule see: an open file, and how its number leads to it. Every line read and
// every text written looks that up, so it stands here, where the compiler can merge it into its callers.

struct FileModule::OpenFile {
  WindowsAPI::Handle Handle = -1;
  FileInformation Information;  ///< as it was when opened
  std::optional<InputBuffer> Input;
  std::optional<OutputBuffer> Output;

  [[nodiscard]] std::int32_t Length() const {
    if (Information.Size > std::numeric_limits<std::int32_t>::max()) return kNoLength;
    return static_cast<std::int32_t>(Information.Size);
  }
};

inline FileModule::OpenFile* FileModule::Find(std::int16_t fileNumber) const {
  if (fileNumber < 1 || static_cast<std::size_t>(fileNumber) > files_.size()) return nullptr;
  return files_[static_cast<std::size_t>(fileNumber) - 1].get();
}

}  // namespace folioweld
