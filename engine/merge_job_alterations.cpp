// How MergeJob tells what the output shows otherwise than its inputs.

#include "engine/alteration_record.h"
#include "engine/merge_job.h"

namespace folioweld {

/// Each is a line of the log and a notice; the status line tells that there are any, whichever step of a
/// folder's merge has found them.
void MergeJob::TellAlterations() {
  for (const std::string& sentence : TakeSources(state_)) Report(sentence);
  const int count = WarningCount(state_);
  if (count == 0) return;
  const std::string summary =
      (count == 1 ? "1 warning" : std::to_string(count) + " warnings") + ", see the log";
  shell_.AppendStatusText(2, (state_.LogEnabled ? summary : FirstWarning(state_)) + "\r\n");
}

}  // namespace folioweld
