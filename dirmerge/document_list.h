#pragma once

#include <optional>
#include <string>
#include <vector>

#include "dirmerge/logging.h"
#include "engine/file_module.h"
#include "engine/merge_shell.h"
#include "engine/merge_state.h"
#include "platform/windows_api.h"

namespace folioweld {

/// What a folder holds for a directory merge.
struct DocumentList {
  std::vector<std::string> Names;             ///< accepted files, without the folder
  std::vector<FileIdentity> Identities;       ///< of the accepted files, in the same order
  std::vector<std::string> RefusedDocuments;  ///< names of files that look like documents and were refused
  SystemError FolderError;                    ///< why the folder could not be listed to its end
};

enum class ListOutcome { Complete, Cancelled, TooMany, FolderFailed };

/// Finds the acceptable documents of a folder, in the order in which the system lists them. Only regular
/// files are candidates (links are followed), hidden ones and names without a dot too. Every refused file is
/// logged. One that is named ".pdf" or has "%PDF-" in its first 1,024 bytes is taken for a document: it is
/// noticed, with the reason, and listed as refused, unless it is the output. A folder of more files than 16
/// bits count gives `TooMany`.
[[nodiscard]] ListOutcome ListDocuments(const std::string& folder, FileModule& files, MergeShell& shell,
                                        const MergeState& state, const Logging& logging,
                                        const std::optional<FileIdentity>& output, DocumentList& list);

}  // namespace folioweld
