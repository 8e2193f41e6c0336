#include "engine/merge_job.h"

#include <cerrno>
#include <utility>

#include "engine/pass_guard.h"
#include "engine/pdf_builder.h"

namespace folioweld {

namespace {

constexpr char kTitle[] = "Folioweld";
constexpr char kLogPrefix[] = "[Folioweld-cmdOK]=>";
constexpr char kFailedOutcome[] = "   -> FAILED or cancelled\r\n";
constexpr char kSuccessOutcome[] = "   -> OK\r\n";
constexpr char kFailedWords[] = "FAILED or cancelled";

bool EndsWithFailure(std::string text) {
  while (!text.empty() && (text.back() == '\r' || text.back() == '\n')) text.pop_back();
  const std::string words = kFailedWords;
  return text.size() >= words.size() && text.compare(text.size() - words.size(), words.size(), words) == 0;
}

/// Whether the document's newest trailer has /Encrypt, as a reference or as a dictionary of its own.
bool IsEncrypted(const MergeState& state, std::int16_t slot) {
  if (!state.DocUsed(slot) || state.DocXrefCount(slot) == 0) return false;
  for (std::int32_t row = state.TrailerEntry(slot, 0); row >= 0; row = state.NameEntries[row].NameId) {
    if (state.NameEntries[row].NameText == "/Encrypt") return true;
  }
  return false;
}

}  // namespace

std::string ShortenPath(const std::string& path, std::int16_t maxLen) {
  if (path.size() <= static_cast<std::size_t>(maxLen)) return path;
  const auto part = static_cast<std::size_t>((maxLen - 5) / 2);
  return path.substr(0, part) + " ... " + path.substr(path.size() - part);
}

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
  if (ok) LogEncryptedInputs();
  ok = ok && BuildOutput() && OpenOutput();
  std::int32_t written = -1;
  if (ok) ok = WriteOutput(written);
  bool inputsClosed = true;
  CloseFile(1, inputsClosed);
  CloseFile(2, inputsClosed);
  if (!ok) FinishFailed();
  EndJob();
  if (ok && !state_.DocFileName(3).empty() && state_.ShowOutputAfterMerge && !state_.SilentMode) {
    shell_.ShowOutput(state_.DocFileName(3));
  }
  shell_.RefreshControls();
}

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
  if (!OpenInput(1, why)) {
    state_.JobRunning = false;
    DropInput(1, why);
    state_.MergeStatus = -1;
    return false;
  }
  // The second input is left out silently: no message box, the log alone tells.
  if (!OpenInput(2, why)) DropInput(2, why);
  return true;
}

bool MergeJob::OpenInput(std::int16_t slot, PassFailure& why) {
  why = {};
  state_.DocUsed(slot) = false;
  state_.DocFileNumber(slot) = -1;
  if (state_.DocFileName(slot).empty()) return false;
  const std::int16_t fileNumber = files_.OpenForBinaryRead(state_.DocFileName(slot));
  if (fileNumber < 1) {
    why = {slot, -1, -1, "the file cannot be opened: " + files_.LastError().Words()};
    return false;
  }
  state_.DocFileNumber(slot) = fileNumber;
  std::int32_t result = -1;
  CheckDocumentStructure(state_, files_, fileNumber, slot, result, why);
  state_.DocUsed(slot) = result > 0;
  return state_.DocUsed(slot);
}

void MergeJob::DropInput(std::int16_t slot, const PassFailure& why) {
  const std::string name = std::exchange(state_.DocFileName(slot), {});
  bool closed = true;
  CloseFile(slot, closed);
  state_.DocHeader(slot).clear();
  state_.DocSecondLine(slot).clear();
  state_.DocXrefStart(slot) = -1;
  shell_.RefreshControls();
  if (name.empty()) return;
  state_.Failure = why;
  const std::string sentence = why.Sentence(name);
  shell_.SetStatusText(slot - 1, "FAILED or cancelled: " + sentence);
  Report(
      (slot == 1 ? "The first input is not accepted: " : "The second input is not accepted and left out: ") +
      sentence);
}

bool MergeJob::BuildOutput() {
  PdfBuilder builder(state_, files_, shell_);
  if (builder.BuildOutputPasses1And2() && builder.PastePageCatalogs()) return true;
  ShowFailedOutcome();
  return false;
}

bool MergeJob::OpenOutput() {
  const std::string& path = state_.DocFileName(3);
  // Without a name nothing is opened, and the first write fails.
  if (path.empty()) return true;
  state_.DocFileNumber(3) = files_.OpenForBinaryWrite(path);
  if (state_.DocFileNumber(3) >= 1) return true;
  state_.Failure = {3, -1, -1, "the output cannot be opened: " + files_.LastError().Words()};
  LogFailure(state_.Failure);
  state_.Failure = {};
  ShowWarning("Could not open output file: " + path);
  return false;
}

bool MergeJob::WriteOutput(std::int32_t& written) {
  written = PdfBuilder(state_, files_, shell_).WriteOutputFile();
  bool ok = written >= 0;
  for (const std::int16_t slot : {std::int16_t{1}, std::int16_t{2}}) {
    if (!ok || !state_.DocUsed(slot) || files_.InputIsUnchanged(state_.DocFileNumber(slot))) continue;
    state_.Failure = {slot, -1, -1, "the file was changed while it was being read"};
    ok = false;
  }
  // What another file has taken the place of is no output that anybody will find.
  if (ok && !files_.IsNamed(state_.DocFileNumber(3), state_.DocFileName(3))) {
    state_.Failure = {3, -1, -1, "the output was moved, removed or replaced while it was being written"};
    ok = false;
  }
  if (!ok) {
    ShowFailedOutcome();
    DiscardOutput();
    return false;
  }
  // Cut while it is still open, and with that locked: afterwards another program may be writing it. Not by
  // its name, which can come to lead to another file at any moment.
  CutOutput(written, ok);
  const bool cut = ok;
  if (cut) CloseFile(3, ok);
  if (!ok) {
    state_.Failure = {3, -1, -1, "the output cannot be finished: " + files_.LastError().Words()};
    ShowFailedOutcome();
    if (cut) {
      RemoveOutput(true);
    } else {
      DiscardOutput();
    }
    return false;
  }
  shell_.AppendStatusText(2, kSuccessOutcome);
  return true;
}

void MergeJob::ShowFailedOutcome() {
  // Of the passes that build, the second one alone shows how it ended.
  if (!EndsWithFailure(shell_.StatusText(2))) shell_.AppendStatusText(2, kFailedOutcome);
}

void MergeJob::DiscardOutput() {
  bool stillNamed = false;
  files_.Abandon(state_.DocFileNumber(3), state_.DocFileName(3), stillNamed);
  state_.DocFileNumber(3) = -1;
  RemoveOutput(stillNamed);
}

/// Whatever cannot be removed is told, so that nobody takes it for a document.
void MergeJob::RemoveOutput(bool stillNamed) {
  const std::string& path = state_.DocFileName(3);
  if (path.empty()) return;
  if (stillNamed) files_.DeleteFile(path);
  const auto left = files_.System().GetLinkAttributes(path);
  if (!left.Ok() && left.Error().Code == ENOENT) return;
  // A file that took the output's place is somebody else's; the output itself was emptied.
  if (!stillNamed && left.Ok() && left.Value().Size > 0) return;
  Report("The output \"" + path + "\" could not be removed and is not usable");
}

void MergeJob::CloseFile(std::int16_t slot, bool& ok) {
  if (!files_.Close(state_.DocFileNumber(slot))) ok = false;
  state_.DocFileNumber(slot) = -1;
}

void MergeJob::CutOutput(std::int32_t written, bool& ok) {
  ok = files_.SetFileSize(state_.DocFileNumber(3), written);
}

void MergeJob::FinishFailed() {
  if (!state_.Failure.Empty()) LogFailure(state_.Failure);
  state_.MergeStatus = -1;
  state_.DocFileName(3).clear();
}

void MergeJob::EndJob() {
  state_.CancelSeen = state_.CancelSeen || state_.AbortRequested;
  state_.JobRunning = false;
  state_.AbortRequested = false;
  shell_.LeaveRunningState();
}

void MergeJob::LogEncryptedInputs() {
  for (const std::int16_t slot : {std::int16_t{1}, std::int16_t{2}}) {
    state_.DocEncrypted(slot) = IsEncrypted(state_, slot);
    if (!state_.DocEncrypted(slot)) continue;
    Report("\"" + state_.DocFileName(slot) + "\" is encrypted: its pages will not be readable in the output");
  }
}

void MergeJob::LogFailure(const PassFailure& failure) {
  const std::string name =
      failure.DocumentSlot == 0 ? std::string() : state_.DocFileName(failure.DocumentSlot);
  Report("The merge failed: " + failure.Sentence(name));
}

void MergeJob::Report(const std::string& text) {
  const std::string line = kLogPrefix + text;
  if (state_.LogEnabled) log_.AddLogLine(line);
  shell_.Notice(line);
}

void MergeJob::ShowWarning(const std::string& text) {
  if (!state_.SilentMode) shell_.ShowMessage(MessageIcon::Exclamation, kTitle, text);
}

}  // namespace folioweld
