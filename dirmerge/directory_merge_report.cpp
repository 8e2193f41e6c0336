#include "dirmerge/directory_merge_report.h"

namespace folioweld {

bool DirectoryMergeReport::Complete() const {
  return OutputWritten && FailedMerges == 0 && RefusedDocuments.empty() && EmptyFolders.empty() &&
         LeftTemporaries.empty() && RepairedDocuments.empty() && AlteredDocuments.empty() &&
         !CarryingFailed && MissingDocuments.empty();
}

ExitStatus StatusOf(const DirectoryMergeReport& report) {
  if (!report.OutputWritten) return kNoOutput;
  return report.Complete() ? kEverythingJoined : kJoinedWithLosses;
}

}  // namespace folioweld
