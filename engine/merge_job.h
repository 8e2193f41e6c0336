#pragma once

#include <cstdint>
#include <string>

#include "engine/activity_log.h"
#include "engine/file_module.h"
#include "engine/merge_shell.h"
#include "engine/merge_state.h"
#include "engine/pdf_reader.h"

namespace folioweld {

/// Checks that an open file has the outline of a document that can be joined: header, marker comment, and a
/// tail whose "startxref" leads to a classic cross-reference table. Reads a few bytes, parses nothing.
///
/// `result` becomes the 0-based offset of the first byte after the "xref" keyword and its line end, -1 when
/// the file is refused; `why` then says which rule is broken (slot 0 when `slot` is neither 1 nor 2). For
/// slots 1 and 2 the outcome is recorded in `DocHeader`, `DocSecondLine` and `DocXrefStart`; for any other
/// slot the state is left alone.
void CheckDocumentStructure(MergeState& state, FileModule& files, std::int16_t fileNumber, std::int16_t slot,
                            std::int32_t& result, PassFailure& why);

/// Whether the file can be opened and joined. When it cannot and `why` is given, the reason goes there.
/// Nothing is shown or logged.
[[nodiscard]] bool IsThisDocumentApdf(FileModule& files, const std::string& sFileSpecif,
                                      PassFailure* why = nullptr);

/// The longest text of a path that a status line or label shows.
inline constexpr std::int16_t kLongestShownPath = 116;

/// The path, or its two ends around " ... " when it is longer than `maxLen` (at least 5) characters.
[[nodiscard]] std::string ShortenPath(const std::string& path, std::int16_t maxLen);

/// The two-document merge: what the "Go" button runs, and the directory merge for every pair. Everything it
/// works on is owned by the caller and has to outlive it.
class MergeJob {
 public:
  MergeJob(MergeState& state, FileModule& files, MergeShell& shell, ActivityLog& log);

  /// Joins `DocFileName`(1) and (2) into (3). The result is left in `MergeStatus` (-1 = failed) and in
  /// `DocFileName`(3), which is emptied when no output was produced. Returns at once when a job is running.
  /// A cancel that was found at the start or seen in between is handed on in `CancelSeen`.
  void cmdOK_Click();

  /// Does what the Cancel button does: the pass that runs ends as failed.
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
  [[nodiscard]] bool OpenOutput();
  [[nodiscard]] bool BuildOutput();
  [[nodiscard]] bool WriteOutput(std::int32_t& written);
  void ShowFailedOutcome();
  void DiscardOutput();
  void RemoveOutput(bool stillNamed);
  void CloseFile(std::int16_t slot, bool& ok);
  void CutOutput(std::int32_t written, bool& ok);
  void FinishFailed();
  void EndJob();
  void LogEncryptedInputs();
  void LogFailure(const PassFailure& failure);
  void Report(const std::string& text);
  void ShowWarning(const std::string& text);

  MergeState& state_;
  FileModule& files_;
  MergeShell& shell_;
  ActivityLog& log_;
  PdfReader reader_;
};

}  // namespace folioweld
