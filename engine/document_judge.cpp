#include "engine/document_judge.h"

#include <algorithm>

#include "engine/alteration_record.h"

namespace folioweld {

namespace {

bool ShowsInLaterPlacesOnly(AlterationKind kind) {
  return kind == AlterationKind::ReferenceNotSeen || kind == AlterationKind::ReferenceToFiller;
}

}  // namespace

bool DocumentJudgement::IsPlain() const {
  return IsJoinable() && Warnings.empty() && LowestMissing < 0;
}

bool DocumentJudgement::IsPlainAt(const DocumentPlace& place) const {
  if (!IsJoinable()) return false;
  if (LowestMissing >= 0 && LowestMissing < ObjectNumbers + place.NumbersAfter) return false;
  return std::all_of(Warnings.begin(), Warnings.end(), [&](const Alteration& warning) {
    return place.IsFirst && ShowsInLaterPlacesOnly(warning.Kind);
  });
}

DocumentJudge::DocumentJudge(FileModule& files, MergeShell& shell, const MergeState& watched)
    : shell_(shell, watched, state_), log_(shell_), job_(state_, files, shell_, log_) {}

void DocumentJudge::QuietShell::HandleEvents() {
  shell_.Yield();
  state_.AbortRequested = watched_.AbortRequested;
}

DocumentJudgement DocumentJudge::Judge(const std::string& path, bool alone) {
  DocumentJudgement judgement;
  state_.DocFileName(1) = path;
  state_.AbortRequested = false;
  const bool joinable = job_.TryInput(!alone, judgement.LowestMissing);
  if (!joinable) judgement.Refusal = state_.Failure;
  judgement.Warnings = SourcesOf(state_, 1).front().Alterations;
  // Two lines for each object.
  judgement.Objects = state_.ObjLineCount / 2;
  judgement.ObjectNumbers = state_.DocObjectCount(1);
  return judgement;
}

}  // namespace folioweld
