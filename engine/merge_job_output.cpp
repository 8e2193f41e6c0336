// The job builds, writes and finishes its output, or takes it away again.

#include <cerrno>

#include "engine/merge_job.h"
#include "engine/pdf_builder.h"

namespace folioweld {

bool MergeJob::BuildOutput() {
  PdfBuilder builder(state_, files_, shell_);
  if (builder.BuildOutputPasses1And2() && builder.PastePageCatalogs() && builder.CheckLineLimit())
    return true;
  // Of the building passes, only pass #2 shows by itself how it ended.
  if (!shell_.StatusText(2).ends_with(OutcomeText(false) + "\r\n")) ShowOutcome(false);
  return false;
}

bool MergeJob::OpenOutput() {
  const std::string& path = state_.DocFileName(3);
  // Without a name nothing is opened, and the first write fails.
  if (path.empty()) return true;
  state_.DocFileNumber(3) = files_.OpenForBinaryWrite(path);
  if (state_.DocFileNumber(3) >= 1) return true;
  const std::string reason = files_.LastError().Code == ESTALE
                                 ? files_.LastReason()
                                 : WhyNoOutput(files_.System(), path, files_.LastError(), InputDocuments());
  LogFailure({3, -1, -1, "the output cannot be opened"});
  // Told already.
  state_.Failure = {};
  ShowWarning("Could not open output file: " + path);
  Report("  because of " + reason);
  return false;
}

std::vector<NamedDocument> MergeJob::InputDocuments() {
  std::vector<NamedDocument> documents;
  for (const std::int16_t slot : {std::int16_t{1}, std::int16_t{2}}) {
    const auto input = files_.System().GetFileAttributes(state_.DocFileName(slot));
    if (input.Ok()) documents.push_back({input.Value().Identity, state_.DocFileName(slot)});
  }
  return documents;
}

bool MergeJob::WriteOutput() {
  const std::int32_t written = PdfBuilder(state_, files_, shell_).WriteOutputFile();
  if (written < 0 || !NothingChangedMeanwhile()) {
    ShowOutcome(false);
    DiscardOutput();
    return false;
  }
  if (!FinishOutput(written)) return false;
  ShowOutcome(true);
  return true;
}

bool MergeJob::NothingChangedMeanwhile() {
  for (const std::int16_t slot : {std::int16_t{1}, std::int16_t{2}}) {
    if (!state_.DocUsed(slot) || files_.InputIsUnchanged(state_.DocFileNumber(slot))) continue;
    state_.Failure = {
        slot, -1, -1,
        "the file was changed, or its name, links or permissions were, while it was being read"};
    return false;
  }
  if (files_.IsNamed(state_.DocFileNumber(3), state_.DocFileName(3))) return true;
  // Nobody would find an output whose name belongs to another file by now.
  state_.Failure = {3, -1, -1, "the output was moved, removed or replaced while it was being written"};
  return false;
}

bool MergeJob::FinishOutput(std::int32_t written) {
  // Cut while it is open and locked, and not by its name, which can lead to another file at any moment.
  const bool cut = files_.SetFileSize(state_.DocFileNumber(3), written);
  output_ = files_.InformationOf(state_.DocFileNumber(3));
  output_.Size = written;
  outputFinished_ = cut && CloseFile(3);
  if (outputFinished_) return true;
  state_.Failure = {3, -1, -1, "the output cannot be finished: " + files_.LastError().Words()};
  ShowOutcome(false);
  if (cut) {
    RemoveOutput(true);
  } else {
    DiscardOutput();
  }
  return false;
}

/// False when there is no output any more.
bool MergeJob::RunSequel(std::string& warning) {
  if (sequel_ == nullptr) return true;
  const OutputSequel::Outcome outcome = sequel_->Run(output_, warning);
  if (outcome == OutputSequel::Outcome::Kept) return true;
  state_.Failure = {3, -1, -1, warning};
  ShowOutcome(false);
  if (outcome == OutputSequel::Outcome::Unusable) RemoveOutput(true);
  return false;
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

}  // namespace folioweld
