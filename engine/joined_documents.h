#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/windows_api.h"

namespace folioweld {

/// A document of a joined file, as another program is told of it.
struct JoinedDocument {
  std::string Path;              ///< what was joined: the document, or a copy that was prepared of it
  FileInformation Known;         ///< of that file when it was joined; of it only what `IsSameState` compares
  std::string Name;              ///< of the document, without its folder
  std::int32_t FirstObject = 0;  ///< what its object numbers are raised by in the joined file
};

/// The documents in their order, as `ReadJoinedDocuments` takes them: fields of text, each ended by a NUL.
[[nodiscard]] std::string WriteJoinedDocuments(const std::vector<JoinedDocument>& documents);

/// Nothing when the bytes are not what `WriteJoinedDocuments` gives.
[[nodiscard]] std::optional<std::vector<JoinedDocument>> ReadJoinedDocuments(std::string_view bytes);

}  // namespace folioweld
