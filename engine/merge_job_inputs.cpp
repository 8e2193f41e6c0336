// The job opens, accepts and reads its inputs.

#include <new>
#include <utility>

#include "engine/alteration_record.h"
#include "engine/merge_job.h"
#include "engine/pass_guard.h"
#include "engine/shortened_path.h"
#include "engine/xref_chain.h"

namespace folioweld {

bool MergeJob::OutputIsInputName() {
  const std::string& output = state_.DocFileName(3);
  if (output != state_.DocFileName(1) && output != state_.DocFileName(2)) return false;
  ShowWarning("The output file is also an input file!\r\nThis operation cannot be done.");
  Report("The output file is also an input file: \"" + output + "\"");
  state_.MergeStatus = -1;
  state_.JobRunning = false;
  return true;
}

bool MergeJob::OpenInputs() {
  state_.DocUsed(2) = false;
  PassFailure why;
  const auto open = [&](std::int16_t slot) {
    const bool opened = OpenInput(slot, why);
    // A document that could not be looked at is none that may be left out.
    if (why.Rule == kOutOfMemory) throw std::bad_alloc();
    return opened;
  };
  if (!open(1)) {
    state_.JobRunning = false;
    DropInput(1, why);
    state_.MergeStatus = -1;
    return false;
  }
  // The second input is left out without a message box; the log alone tells.
  if (!open(2)) DropInput(2, why);
  return true;
}

bool MergeJob::OpenInput(std::int16_t slot, PassFailure& why) {
  why = {};
  state_.DocUsed(slot) = false;
  state_.DocFileNumber(slot) = -1;
  if (state_.DocFileName(slot).empty()) return false;
  const std::int16_t fileNumber = files_.OpenForBinaryRead(state_.DocFileName(slot));
  if (fileNumber < 1) {
    why = {slot, -1, -1, "the file cannot be opened: " + files_.LastReason()};
    return false;
  }
  state_.DocFileNumber(slot) = fileNumber;
  std::int32_t result = -1;
  CheckDocumentStructure(state_, files_, fileNumber, slot, result, why);
  state_.DocUsed(slot) = result > 0;
  if (state_.DocUsed(slot) && !IsRewritten(state_, slot)) {
    SourcesOf(state_, slot).front().Read = files_.InformationOf(fileNumber);
  }
  return state_.DocUsed(slot);
}

void MergeJob::DropInput(std::int16_t slot, const PassFailure& why) {
  const std::string name = std::exchange(state_.DocFileName(slot), {});
  // It was only read: closing it cannot lose anything.
  static_cast<void>(CloseFile(slot));
  state_.DocHeader(slot).clear();
  state_.DocSecondLine(slot).clear();
  state_.DocXrefStart(slot) = -1;
  shell_.RefreshControls();
  if (name.empty()) return;
  state_.Failure = why;
  const std::string sentence = why.Sentence(name);
  shell_.SetStatusText(slot - 1, std::string(kFailedOrCancelled) + ": " + sentence);
  Report(
      (slot == 1 ? "The first input is not accepted: " : "The second input is not accepted and left out: ") +
      sentence);
}

void MergeJob::ReadInputs(bool& ok) {
  ok = false;
  ResetMergeState(state_);
  if (state_.DocUsed(1)) ReadOneInput(1, ok);
  if (ok && state_.DocUsed(2)) ReadOneInput(2, ok);
  const bool counted = RunGuarded(state_, 0, [&] {
    state_.ObjectsInDoc1 = state_.DocObjectCount(1);
    state_.ObjectsInDoc2 = state_.DocObjectCount(2);
    state_.ObjectsTotal = CheckedAdd(state_.ObjectsInDoc1, state_.ObjectsInDoc2);
    if (ok && state_.Objects.UpperBound() != state_.ObjectsTotal - 1) {
      throw RuleBroken({0, -1, -1, "the object table does not cover the objects of both inputs"});
    }
    return true;
  });
  ok = ok && counted;
}

void MergeJob::ReadOneInput(std::int16_t slot, bool& ok) {
  ok = false;
  if ((slot != 1 && slot != 2) || !state_.DocUsed(slot)) return;
  const int line = slot - 1;
  const std::string label = "Parsing file #" + std::to_string(slot) + ": ";
  const int room = kLongestShownPath - static_cast<int>(label.size());
  shell_.SetStatusText(line, label + ShortenPath(state_.DocFileName(slot), room) +
                                 "\r\nPass #1 (getting general document structure):    \r\n");
  state_.DictDepth = 0;
  ReadXrefChain(slot, ok);
  shell_.AppendStatusText(line, OutcomeText(ok));
  if (!ok) return;
  shell_.AppendStatusText(line, "\r\nPass #2 (getting description of the objects):\r\n+");
  state_.DictDepth = 0;
  ok = reader_.ScanObjects(slot);
  shell_.AppendStatusText(line, OutcomeText(ok));
}

void MergeJob::ReadXrefChain(std::int16_t slot, bool& ok) {
  ok = RunGuarded(state_, slot, [&] {
    WalkXrefChain(state_, files_, shell_, reader_, slot);
    return true;
  });
}

}  // namespace folioweld
