#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace folioweld {

/// What came of a directory merge; documents bear the names that the user is told.
struct DirectoryMergeReport {
  bool OutputWritten = false;
  std::size_t JoinedDocuments = 0;  ///< in the output
  bool Cancelled = false;
  int FailedMerges = 0;
  int FailedByDocuments = 0;  ///< of these, because of what a document is like
  std::vector<std::string> RefusedDocuments;
  std::vector<std::string> EmptyFolders;       ///< named by the user, without a document to join
  std::vector<std::string> LeftTemporaries;    ///< of a run that was killed; joined if they are documents
  std::vector<std::string> RepairedDocuments;  ///< joined from a copy for which they had to be repaired
  std::vector<std::string> AlteredDocuments;   ///< in the output, but with a warning
  bool CarryingFailed = false;                 ///< nothing was carried over into the output
  std::vector<std::string> MissingDocuments;   ///< accepted, but not in the output that was written

  /// The output was written and every document of the folder is in it, with nothing to warn of.
  [[nodiscard]] bool Complete() const;
};

/// How a program of this project ends.
enum ExitStatus {
  kEverythingJoined = 0,  ///< every document of the folder is in the output, as it was
  kNoOutput = 1,
  kNotServed = 2,        ///< the command line cannot be served here
  kJoinedWithLosses = 3  ///< the output was written, but a document was refused, is missing or is altered
};

/// The status that a directory merge ends with.
[[nodiscard]] ExitStatus StatusOf(const DirectoryMergeReport& report);

}  // namespace folioweld
