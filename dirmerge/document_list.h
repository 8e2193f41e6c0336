#pragma once

#include <optional>
#include <string>
#include <vector>

#include "dirmerge/logging.h"
#include "dirmerge/program_state.h"
#include "dirmerge/source_list.h"
#include "engine/file_module.h"
#include "engine/merge_shell.h"
#include "engine/output_refusal.h"
#include "platform/windows_api.h"

namespace folioweld {

/// A document, found in a source.
struct ListedDocument {
  std::string Name;  ///< as the user is told of it
  std::string Path;
};

/// The document of that name in a source; for a document that is a source by itself the name is the source's.
[[nodiscard]] ListedDocument DocumentOf(const Source& source, const std::string& name);

/// Whether a regular file counts as a document, though it may be refused: by its name, or by its first 1,024
/// bytes.
[[nodiscard]] bool LooksLikeDocument(FileModule& files, const std::string& path);

/// What the sources of a directory merge hold.
struct DocumentList {
  std::vector<std::string> Names;     ///< accepted files, those of folders without the folder
  std::vector<NamedDocument> Inputs;  ///< what no output may be: accepted files, and all that were named
  std::vector<ListedDocument> RefusedDocuments;  ///< files that look like documents and were refused
  std::vector<std::string> LeftTemporaries;      ///< files of a folder that a run left which was killed
  SystemError FolderError;                       ///< why a folder could not be listed to its end
};

enum class ListOutcome { Complete, Cancelled, TooMany, FolderFailed };

/// Adds the acceptable documents of a source to the list; those of a folder in the order in which the system
/// lists them. Only regular files are candidates (links are followed), hidden ones and names without a dot
/// too. Every refused file is logged. One that is a source by itself, is named ".pdf" or has "%PDF-" in its
/// first 1,024 bytes is taken for a document: it is noticed, with the reason, and listed as refused; in a
/// folder unless it is the output. A temporary file that a killed run left in a folder is noticed
/// and listed as that, and else treated like any other. More documents than 16 bits count give `TooMany`.
/// What is refused and would be noticed is listed like an acceptable document where `program` has it
/// prepared.
[[nodiscard]] ListOutcome ListDocuments(const Source& source, FileModule& files, MergeShell& shell,
                                        const ProgramState& program, const Logging& logging,
                                        const std::optional<FileIdentity>& output, DocumentList& list);

}  // namespace folioweld
