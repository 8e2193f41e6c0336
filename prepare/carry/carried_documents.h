#pragma once

#include <vector>

#include "engine/joined_documents.h"
#include "platform/windows_api.h"
#include "prepare/carry/revision.h"
#include "prepare/libqpdf.h"

namespace folioweld {

/// The list of documents in an open file. Raises `NotPrepared` or `NotCarried`.
[[nodiscard]] std::vector<JoinedDocument> ReadList(WindowsAPI& system, WindowsAPI::Handle list);

/// The documents of the joined file. The catalog of one that cannot be read, or that is no longer what was
/// joined, is a loss of everything that it holds. Raises `NotCarried` when the list is not that of the file.
[[nodiscard]] std::vector<CarriedDocument> ReadDocuments(WindowsAPI& system, QPDF& file,
                                                         const std::vector<JoinedDocument>& list,
                                                         std::vector<CarryLoss>& losses);

}  // namespace folioweld
