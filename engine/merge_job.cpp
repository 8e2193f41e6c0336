// The order of the job's steps, and how it tells what came of them.

#include "engine/merge_job.h"

#include <new>
#include <string>
#include <utility>

#include "engine/alteration_record.h"

namespace folioweld {

namespace {

constexpr char kTitle[] = "Folioweld";
constexpr char kMergePrefix[] = "[Folioweld-cmdOK]=>";

}  // namespace

MergeJob::MergeJob(MergeState& state, FileModule& files, MergeShell& shell, ActivityLog& log)
    : state_(state), files_(files), shell_(shell), log_(log), reader_(state, files, shell) {
  state_.Memory.UseLargePages(files_.System());
}

void MergeJob::AbortOperation() {
  state_.AbortRequested = true;
}

void MergeJob::cmdOK_Click() {
  if (state_.JobRunning) return;
  state_.JobRunning = true;
  outputFinished_ = false;
  try {
    KeepLastLine();
    RunJob();
  } catch (const std::bad_alloc&) {
    EndWithoutMemory();
  }
}

void MergeJob::RunJob() {
  state_.CancelSeen = state_.AbortRequested;
  state_.AbortRequested = false;
  state_.Failure = {};
  if (OutputIsInputName()) return;

  for (int line = 0; line <= 2; ++line) shell_.SetStatusText(line, {});
  shell_.DisableInputPicking();
  if (!OpenInputs()) return;
  shell_.RefreshControls();
  shell_.EnterRunningState();

  bool ok = false;
  ReadInputs(ok);
  ok = ok && BuildOutput() && OpenOutput() && WriteOutput();
  // An input was only read: closing it cannot lose anything.
  static_cast<void>(CloseFile(1));
  static_cast<void>(CloseFile(2));
  std::string warning;
  if (ok) TakeSources(state_);
  ok = ok && RunSequel(warning);
  if (ok) TellAlterations(warning);
  if (!ok) FinishFailed();
  // Whoever cancels the sequel does not wait for the output.
  const bool leftEarly = sequel_ != nullptr && state_.AbortRequested;
  EndJob();
  const bool hasOutput = ok && !leftEarly && !state_.DocFileName(3).empty();
  if (hasOutput && state_.ShowOutputAfterMerge && !state_.SilentMode) {
    shell_.ShowOutput(state_.DocFileName(3));
  }
  shell_.RefreshControls();
}

bool MergeJob::CloseFile(std::int16_t slot) {
  const bool closed = files_.Close(state_.DocFileNumber(slot));
  state_.DocFileNumber(slot) = -1;
  return closed;
}

void MergeJob::FinishFailed() {
  if (!state_.Failure.Empty()) LogFailure(state_.Failure);
  state_.MergeStatus = -1;
  state_.DocFileName(3).clear();
}

void MergeJob::KeepLastLine() {
  if (lastLine_.empty()) lastLine_ = std::string(kMergePrefix) + "The merge failed: " + kOutOfMemory;
}

/// Where a step of the job itself ran out of memory, and no pass. What it has written of the output goes.
void MergeJob::EndWithoutMemory() {
  // After the end there is only the window to be brought up to date.
  if (!state_.JobRunning) return;
  static_cast<void>(CloseFile(1));
  static_cast<void>(CloseFile(2));
  if (state_.DocFileNumber(3) >= 1) {
    DiscardOutput();
  } else if (outputFinished_) {
    files_.DeleteFile(state_.DocFileName(3));
  }
  state_.Failure.Rule.clear();
  FinishFailed();
  EndJob();
  try {
    // Where not even the line could be kept, there may be memory by now.
    KeepLastLine();
    shell_.Notice(lastLine_);
    if (state_.LogEnabled) log_.AddLogLine(std::move(lastLine_));
  } catch (const std::bad_alloc&) {
    // The status tells all the same.
  }
}

void MergeJob::EndJob() {
  state_.CancelSeen = state_.CancelSeen || state_.AbortRequested;
  state_.DocSources(1).clear();
  state_.DocSources(2).clear();
  state_.JobRunning = false;
  state_.AbortRequested = false;
  shell_.LeaveRunningState();
}

void MergeJob::ShowOutcome(bool ok) {
  shell_.AppendStatusText(2, OutcomeText(ok) + "\r\n");
}

void MergeJob::LogFailure(const PassFailure& failure) {
  const std::string name =
      failure.DocumentSlot == 0 ? std::string() : state_.DocFileName(failure.DocumentSlot);
  const std::string sentence = "The merge failed: " + failure.Sentence(name);
  // Whoever cancelled a run knows it.
  if (failure.Rule == kCancelled) {
    if (state_.LogEnabled) log_.AddLogLine(kMergePrefix + sentence);
  } else {
    Report(sentence);
  }
}

void MergeJob::Report(const std::string& text) {
  const std::string line = kMergePrefix + text;
  if (state_.LogEnabled) log_.AddLogLine(line);
  shell_.Notice(line);
}

void MergeJob::ShowWarning(const std::string& text) {
  if (!state_.SilentMode) shell_.ShowMessage(MessageIcon::Exclamation, kTitle, text);
}

}  // namespace folioweld
