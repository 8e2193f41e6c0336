#include "dirmerge/prepared_inputs.h"

#include <exception>

#include "dirmerge/tmp_directory.h"

namespace folioweld {

namespace {

constexpr char kPairPrefix[] = "[Folioweld-cmdOK]=>";

/// The running look, while the window counts as busy.
class RunningLook {
 public:
  RunningLook(ProgramState& program, MergeShell& shell) : program_(program), shell_(shell) {
    program_.ExternalBusy = true;
    program_.Merge.AbortRequested = false;
    for (int line = 0; line <= 2; ++line) shell_.SetStatusText(line, {});
    shell_.DisableInputPicking();
    shell_.EnterRunningState();
  }
  RunningLook(const RunningLook&) = delete;
  RunningLook& operator=(const RunningLook&) = delete;
  ~RunningLook() {
    program_.ExternalBusy = false;
    program_.Merge.AbortRequested = false;
    shell_.LeaveRunningState();
  }

 private:
  ProgramState& program_;
  MergeShell& shell_;
};

}  // namespace

PreparedInputs::PreparedInputs(ProgramState& program, FileModule& files, SettingsStore& settings,
                               MergeShell& shell, ActivityLog& log)
    : program_(program),
      files_(files),
      settings_(settings),
      shell_(shell),
      logging_(LoggingOf(kPairPrefix, program.Merge, shell, log)),
      preparation_(files, shell, program.Merge, logging_) {}

bool PreparedInputs::Prepare() {
  MergeState& state = program_.Merge;
  const std::string& output = state.DocFileName(3);
  // The job refuses this at once.
  if (output == state.DocFileName(1) || output == state.DocFileName(2)) return true;
  Outcome outcome = Outcome::Failed;
  try {
    const RunningLook look(program_, shell_);
    outcome = Run();
  } catch (const std::exception&) {
    // Memory is all that can run out here. The job would fail as well.
    shell_.Notice("out of memory");
  }
  if (outcome == Outcome::Ready) return true;
  state.MergeStatus = -1;
  state.DocFileName(3).clear();
  shell_.RefreshControls();
  return false;
}

PreparedInputs::Outcome PreparedInputs::Run() {
  std::vector<ListedDocument> documents;
  for (const int slot : {1, 2}) {
    const std::string& name = program_.Merge.DocFileName(slot);
    if (!name.empty()) documents.push_back({name, name});
  }
  DirectoryMergeReport report;
  const bool complete = preparation_.Run(
      documents, [this](std::string& why) { return Folder(why); }, report);
  if (complete && report.RefusedDocuments.empty()) return Outcome::Ready;
  for (const int line : {0, 1}) {
    if (!shell_.StatusText(line).empty()) shell_.AppendStatusText(line, OutcomeText(false));
  }
  if (complete) {
    shell_.ShowMessage(
        MessageIcon::Exclamation, "Folioweld",
        "\"" + report.RefusedDocuments.front() + "\"\r\n is not a suitable PDF document for this program");
  }
  return Outcome::Failed;
}

std::string PreparedInputs::Folder(std::string& why) {
  return TmpDirectory(files_.System(), settings_, shell_).SafeTmpDirectory(logging_.Notice, why);
}

}  // namespace folioweld
