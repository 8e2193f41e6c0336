// How MergeJob tells what the output shows otherwise than its inputs.

#include "engine/alteration_record.h"
#include "engine/merge_job.h"

namespace folioweld {

/// Each is a line of the log and a notice; the status line tells that there are any, whichever step of a
/// folder's merge has found them.
void MergeJob::TellAlterations(const std::string& more) {
  for (const std::string& sentence : TellSources(state_)) Report(sentence);
  if (!more.empty()) Report(more);
  const int count = WarningCount(state_) + (more.empty() ? 0 : 1);
  if (count == 0) return;
  const std::string summary =
      (count == 1 ? "1 warning" : std::to_string(count) + " warnings") + ", see the log";
  std::string text = state_.LogEnabled ? summary : FirstWarning(state_);
  if (text.empty()) text = more;
  shell_.AppendStatusText(2, text + "\r\n");
}

}  // namespace folioweld
