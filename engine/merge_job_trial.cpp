// The job tries an input without making an output.

#include "engine/alteration_checks.h"
#include "engine/merge_job.h"
#include "engine/pass_guard.h"
#include "engine/pdf_builder.h"

namespace folioweld {

bool MergeJob::TryInput(bool amongOthers, std::int32_t& lowestMissing) {
  lowestMissing = -1;
  state_.DocUsed(2) = false;
  state_.DocSources(1).clear();
  PassFailure why;
  bool ok = OpenInput(1, why);
  if (ok) {
    ReadInputs(ok);
  } else {
    state_.Failure = why;
  }
  PdfBuilder builder(state_, files_, shell_);
  ok = ok && builder.BuildOutputPasses1And2();
  if (ok && amongOthers) {
    ok = RunGuarded(state_, 1, [&] {
      lowestMissing = FindAlterationsAmongOthers(state_, shell_);
      return true;
    });
    ok = ok && builder.TryPageCatalog();
  }
  ok = ok && builder.PastePageCatalogs();
  // It was only read: closing it cannot lose anything.
  static_cast<void>(CloseFile(1));
  return ok;
}

}  // namespace folioweld
