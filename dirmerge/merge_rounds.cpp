#include "dirmerge/merge_rounds.h"

#include <map>
#include <utility>

#include "dirmerge/paths.h"

namespace folioweld {

namespace {

/// How many merges and rounds make one file out of so many.
MergeNumber CountMerges(int files) {
  MergeNumber number{1, files == 1 ? 1 : 0, 1, 1};
  for (; files > 1; files = (files + 1) / 2) {
    number.Merges += files / 2;
    if (files > 2) ++number.Rounds;
  }
  return number;
}

}  // namespace

/// The counts of one round, as the log names them.
struct MergeRounds::Round {
  int iNumFilesToMerge;
  int indBaseTmp;                               ///< of the round's first result among those of all rounds
  int iLastIndex = (iNumFilesToMerge - 1) / 2;  ///< of the last pair
};

MergeRounds::MergeRounds(ProgramState& program, FileModule& files, MergeShell& shell, ActivityLog& log,
                         Logging logging)
    : program_(program),
      files_(files),
      shell_(shell),
      logging_(std::move(logging)),
      job_(program.Merge, files, shell, log) {}

void MergeRounds::Run(const std::vector<ListedDocument>& documents, const std::string& output,
                      const std::string& tmpFolder, DirectoryMergeReport& report, OutputSequel* sequel) {
  output_ = output;
  tmpFolder_ = tmpFolder;
  report_ = &report;
  sequel_ = sequel;
  accepted_ = documents;
  number_ = CountMerges(static_cast<int>(documents.size()));
  filesToMerge_.clear();
  for (const ListedDocument& document : documents) {
    filesToMerge_.push_back({document.Path, {{document.Path, 0, false, {}}}});
  }

  TemporaryFiles temporaries(files_, logging_);
  for (Round round{static_cast<int>(documents.size()), 0};; ++number_.Round) {
    logging_.Log("iNumFilesToMerge: " + std::to_string(round.iNumFilesToMerge) + "   indBaseTmp: " +
                 std::to_string(round.indBaseTmp) + "   iLastIndex: " + std::to_string(round.iLastIndex) +
                 "   indMaxTmp: " + std::to_string(temporaries.Highest()));
    results_.assign(static_cast<std::size_t>(round.iLastIndex) + 1, {});
    const bool goOn = RunRound(round, temporaries);
    const bool last = round.iNumFilesToMerge < 3;
    if (last || !goOn) {
      NoteOutput(last ? results_[0] : Piece());
      return;
    }
    filesToMerge_ = std::exchange(results_, {});
    round = Round{round.iLastIndex + 1, round.indBaseTmp + round.iLastIndex + 1};
  }
}

bool MergeRounds::RunRound(const Round& round, TemporaryFiles& temporaries) {
  for (int k = 0; k <= round.iLastIndex; ++k) {
    if (YieldAndCheckAbort(shell_, program_.Merge)) return false;
    const bool pair = 2 * k < round.iNumFilesToMerge - 1;
    if (pair || round.iNumFilesToMerge == 1) {
      if (!RunPair(round, k, temporaries)) return false;
    } else {
      if (!GrowTo(round.indBaseTmp + round.iLastIndex, temporaries)) return false;
      CarryOdd(round);
    }
  }
  return true;
}

bool MergeRounds::RunPair(const Round& round, int pair, TemporaryFiles& temporaries) {
  const auto i = static_cast<std::size_t>(pair) * 2;
  const Piece* const second = round.iNumFilesToMerge == 1 ? nullptr : &filesToMerge_[i + 1];
  std::string output = output_;
  if (round.iNumFilesToMerge < 3) {
    job_.SetSequel(sequel_);
  } else {
    const int index = round.indBaseTmp + pair;
    if (!MakeTemporary(index, temporaries)) return false;
    output = temporaries.Name(index);
  }
  Merge(filesToMerge_[i], second, output, results_[static_cast<std::size_t>(pair)]);
  // The job has taken the flag down; the request itself goes on to the clean-up.
  return !program_.Merge.CancelSeen;
}

void MergeRounds::CarryOdd(const Round& round) {
  const int last = round.iNumFilesToMerge - 1;
  logging_.Log("sTmpFiles(" + std::to_string(round.indBaseTmp + round.iLastIndex) + ") = filesToMerge(" +
               std::to_string(last) + ")");
  results_[static_cast<std::size_t>(round.iLastIndex)] = filesToMerge_[static_cast<std::size_t>(last)];
}

bool MergeRounds::GrowTo(int index, TemporaryFiles& temporaries) {
  if (index <= temporaries.Highest() || temporaries.Grow(index)) return true;
  logging_.Notice(" Memory allocation problem!");
  return false;
}

bool MergeRounds::MakeTemporary(int index, TemporaryFiles& temporaries) {
  if (!GrowTo(index, temporaries)) return false;
  SystemError error;
  FileInformation made;
  std::string name = MakeTempFileName(files_.System(), tmpFolder_, "Pdf", "", &error, &made);
  if (name.empty()) {
    logging_.Notice(" Temporary file allocation problem!");
    logging_.Notice("  because of " + error.Words() + " (\"" + tmpFolder_ + "\")");
    return false;
  }
  temporaries.SetCreated(index, std::move(name), made);
  return true;
}

void MergeRounds::Merge(const Piece& first, const Piece* second, const std::string& output, Piece& result) {
  MergeState& state = program_.Merge;
  state.DocFileName(1) = first.Path;
  state.DocFileName(2) = second == nullptr ? std::string() : second->Path;
  state.DocFileName(3) = output;
  state.DocSources(1) = first.Documents;
  state.DocSources(2) = second == nullptr ? std::vector<SourceDocument>() : second->Documents;
  logging_.Log("sPdfM(1)= \"" + state.DocFileName(1) + "\"  +  sPdfM(2)= \"" + state.DocFileName(2) +
               "\"  -> sPdfM(3)= \"" + output + "\"");
  // The log lets events in, and the job would begin by taking the flag down.
  state.CancelSeen = state.AbortRequested;
  if (state.CancelSeen) return;
  AnnounceMerge(first, second);
  state.SilentMode = true;
  job_.cmdOK_Click();
  state.SilentMode = false;

  result.Path = output;
  if (state.MergeStatus == -1) {
    ++report_->FailedMerges;
    const std::int16_t slot = state.Failure.DocumentSlot;
    if ((slot == 1 || slot == 2) && state.Failure.Rule != kCancelled) ++report_->FailedByDocuments;
    return;
  }
  result.Documents = std::move(state.DocSources(3));
}

void MergeRounds::AnnounceMerge(const Piece& first, const Piece* second) {
  const Piece& piece = second == nullptr ? first : *second;
  std::string name;
  std::string folder;
  SplitPath(piece.Documents.empty() ? piece.Path : piece.Documents[0].Name, name, folder);
  shell_.MergeStarts(number_, name);
  ++number_.Merge;
}

/// Says what is not in the output, and what is not as it was. After a failure that may be all of it; what a
/// cancel leaves out needs no list.
void MergeRounds::NoteOutput(const Piece& whole) {
  report_->JoinedDocuments = whole.Documents.size();
  report_->OutputWritten = report_->JoinedDocuments > 0;
  report_->Cancelled = report_->Cancelled || program_.Merge.AbortRequested || program_.Merge.CancelSeen;
  if (!report_->OutputWritten && report_->Cancelled) return;
  std::multimap<std::string, bool> altered;
  for (const SourceDocument& document : whole.Documents) {
    altered.emplace(document.Name, !document.Alterations.empty());
  }
  for (const ListedDocument& document : accepted_) {
    const auto found = altered.find(document.Path);
    if (found == altered.end()) {
      report_->MissingDocuments.push_back(document.Name);
      logging_.Notice("File: \"" + document.Name + "\"  is missing in the output");
      continue;
    }
    if (found->second) report_->AlteredDocuments.push_back(document.Name);
    // A document that was named twice has to be there twice.
    altered.erase(found);
  }
}

}  // namespace folioweld
