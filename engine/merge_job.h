#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "engine/activity_log.h"
#include "engine/document_check.h"
#include "engine/file_module.h"
#include "engine/merge_shell.h"
#include "engine/merge_state.h"
#include "engine/output_refusal.h"
#include "engine/output_sequel.h"
#include "engine/pdf_reader.h"

namespace folioweld {

/// The two-document merge: what the "Go" button runs, and the directory merge for every pair. Everything it
/// works on is owned by the caller and has to outlive it.
///
/// The steps stand in three files: `merge_job.cpp` has their order and the reports, `merge_job_inputs.cpp`
/// opens and reads the inputs, `merge_job_output.cpp` builds, writes and finishes the output.
class MergeJob {
 public:
  MergeJob(MergeState& state, FileModule& files, MergeShell& shell, ActivityLog& log);

  /// Joins `DocFileName`(1) and (2) into (3). The result is left in `MergeStatus` (-1 = failed) and in
  /// `DocFileName`(3), which is emptied when no output was produced. Returns at once when a job is running.
  /// A cancel that was found at the start or seen in between is handed on in `CancelSeen`.
  ///
  /// It has the name of the button's handler because it is what that handler does; the window's own
  /// `cmdOK_Click` only looks whether it is free and calls this one.
  void cmdOK_Click();

  /// Whether `DocFileName`(1) could be joined: every step of a merge with this one input, but for the output.
  /// `amongOthers` tries it as if it stood anywhere among other documents, too. Why not is left in `Failure`,
  /// what would be altered in `DocSources`(1); `lowestMissing` becomes what `FindAlterationsAmongOthers`
  /// gives.
  [[nodiscard]] bool TryInput(bool amongOthers, std::int32_t& lowestMissing);

  /// What is done with the output of each further job; null = nothing. It has to outlive those jobs.
  void SetSequel(OutputSequel* sequel) { sequel_ = sequel; }

  /// What every Cancel does: the pass that runs ends as failed.
  void AbortOperation();

  /// The reading phase: resets the state and reads the inputs in use.
  void ReadInputs(bool& ok);

  /// Both reading passes of one input.
  void ReadOneInput(std::int16_t slot, bool& ok);

  /// Pass #1 of one input: walks the cross-reference sections from the newest along /Prev.
  void ReadXrefChain(std::int16_t slot, bool& ok);

 private:
  [[nodiscard]] bool OutputIsInputName();
  [[nodiscard]] bool OpenInputs();
  [[nodiscard]] bool OpenInput(std::int16_t slot, PassFailure& why);
  void DropInput(std::int16_t slot, const PassFailure& why);

  [[nodiscard]] bool BuildOutput();
  [[nodiscard]] bool OpenOutput();
  [[nodiscard]] std::vector<NamedDocument> InputDocuments();
  [[nodiscard]] bool WriteOutput();
  [[nodiscard]] bool NothingChangedMeanwhile();
  [[nodiscard]] bool FinishOutput(std::int32_t written);
  void DiscardOutput();
  void RemoveOutput(bool stillNamed);

  [[nodiscard]] bool CloseFile(std::int16_t slot);
  void RunJob();
  void FinishFailed();
  void KeepLastLine();
  void EndWithoutMemory();
  void EndJob();
  void ShowOutcome(bool ok);
  /// `more` is one more warning, about the output; empty = none.
  void TellAlterations(const std::string& more);
  [[nodiscard]] bool RunSequel(std::string& warning);
  void LogFailure(const PassFailure& failure);
  void Report(const std::string& text);
  void ShowWarning(const std::string& text);

  MergeState& state_;
  FileModule& files_;
  MergeShell& shell_;
  ActivityLog& log_;
  PdfReader reader_;
  OutputSequel* sequel_ = nullptr;
  FileInformation output_;       ///< of the output once it is finished
  bool outputFinished_ = false;  ///< by the run that is going on
  /// Room for the one line that is told when there is no more memory.
  std::string lastLine_;
};

}  // namespace folioweld
