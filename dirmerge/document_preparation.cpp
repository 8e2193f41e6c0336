#include "dirmerge/document_preparation.h"

#include <cerrno>
#include <iterator>
#include <utility>

#include "dirmerge/extra_programs.h"
#include "dirmerge/object_limit.h"
#include "dirmerge/paths.h"
#include "dirmerge/preparing_pool.h"
#include "engine/shortened_path.h"

namespace folioweld {

namespace {

constexpr char kCaption[] = "Preparing ... ";
constexpr char kNotPrepared[] = "it cannot be prepared: ";

std::string Listed(const std::vector<std::string>& words) {
  std::string text;
  for (const std::string& word : words) text += (text.empty() ? "" : ", ") + word;
  return text;
}

/// What is wrong with a document first of all.
std::string FirstObjection(const DocumentJudgement& judgement, const std::string& name) {
  if (judgement.IsJoinable()) {
    return judgement.Warnings.empty() ? "a reference to an object that it does not have"
                                      : Sentence(judgement.Warnings.front(), name);
  }
  PassFailure refusal = judgement.Refusal;
  refusal.DocumentSlot = 0;
  return refusal.Sentence({});
}

}  // namespace

DocumentPreparation::DocumentPreparation(FileModule& files, MergeShell& shell, const MergeState& state,
                                         const Logging& logging)
    : files_(files),
      shell_(shell),
      state_(state),
      logging_(logging),
      judge_(files, shell, state),
      copies_(files, logging) {}

DocumentPreparation::~DocumentPreparation() {
  for (const Candidate& candidate : candidates_) files_.Prepared().Remove(candidate.Document.Path);
}

bool DocumentPreparation::Run(std::vector<ListedDocument>& documents, const FolderForCopies& folder,
                              DirectoryMergeReport& report) {
  if (!JudgeAll(documents)) return false;
  FindNeeded();
  if (!PrepareNeeded(folder)) return false;
  for (const Candidate& candidate : candidates_) Tell(candidate, report);
  documents.clear();
  for (const Place& place : places_) {
    if (candidates_[place.Index].LeftOut.empty()) documents.push_back(place.Document);
  }
  return true;
}

std::string DocumentPreparation::WhyTooMany() const {
  std::vector<CountedDocument> counted;
  for (const Place& place : places_) {
    const Candidate& candidate = candidates_[place.Index];
    if (candidate.LeftOut.empty()) counted.push_back({place.Document.Name, candidate.Judged.Objects});
  }
  return WhyTooManyObjects(counted);
}

bool DocumentPreparation::JudgeAll(const std::vector<ListedDocument>& documents) {
  for (const ListedDocument& document : documents) {
    const auto [known, isNew] = byPath_.try_emplace(document.Path, candidates_.size());
    places_.push_back({document, known->second});
    if (isNew && !JudgeNew(document, documents.size() == 1)) return false;
  }
  return true;
}

bool DocumentPreparation::JudgeNew(const ListedDocument& document, bool alone) {
  Candidate candidate;
  candidate.Document = document;
  const auto found = files_.System().GetFileAttributes(document.Path);
  if (found.Ok()) candidate.Known = found.Value();
  candidate.Judged = judge_.Judge(document.Path, alone);
  const bool cancelled = candidate.Judged.WasCancelled();
  candidates_.push_back(std::move(candidate));
  return !cancelled && !YieldAndCheckAbort(shell_, state_);
}

/// From the last one on: what follows a document is known then.
void DocumentPreparation::FindNeeded() {
  std::int64_t after = 0;
  for (auto place = places_.rbegin(); place != places_.rend(); ++place) {
    Candidate& candidate = candidates_[place->Index];
    const bool isFirst = std::next(place) == places_.rend();
    if (!candidate.Judged.IsPlainAt({isFirst, after})) candidate.Needed = true;
    after += candidate.Judged.ObjectNumbers;
  }
}

bool DocumentPreparation::PrepareNeeded(const FolderForCopies& folder) {
  std::vector<std::size_t> indices;
  const std::vector<PreparingTask> tasks = MakeTasks(folder, indices);
  if (tasks.empty()) return true;
  const auto begins = [&](std::size_t task) {
    const ListedDocument& document = candidates_[indices[task]].Document;
    shell_.PreparingStarts(static_cast<int>(task) + 1, static_cast<int>(tasks.size()), document.Name);
    // In a directory merge it stands where the first merge will tell of itself.
    const bool hasLine = places_.size() <= 2;
    shell_.SetStatusText(hasLine ? static_cast<int>(indices[task]) : 0,
                         kCaption + ShortenPath(document.Path, kLongestShownPath));
  };
  const std::vector<PreparingResult> results = PrepareAll(
      files_.System(), shell_, state_, FindExtraProgram(files_.System(), kPrepareProgram), tasks, begins);
  if (results.size() < tasks.size()) return false;
  for (std::size_t i = 0; i < tasks.size(); ++i) {
    Candidate& candidate = candidates_[indices[i]];
    candidate.Result = results[i];
    candidate.LeftOut = results[i].Failure;
    if (candidate.LeftOut.empty() && !JudgeCopy(candidate, tasks[i].Copy)) return false;
  }
  return true;
}

std::vector<PreparingTask> DocumentPreparation::MakeTasks(const FolderForCopies& folder,
                                                          std::vector<std::size_t>& indices) {
  std::vector<PreparingTask> tasks;
  std::string path;
  std::string why;
  for (std::size_t i = 0; i < candidates_.size(); ++i) {
    Candidate& candidate = candidates_[i];
    if (!candidate.Needed) continue;
    if (path.empty() && why.empty()) path = folder(why);
    PreparingTask task{candidate.Document.Path, candidate.Known, {}, {}};
    if (path.empty()) {
      candidate.LeftOut = "there is no folder for temporary files, because of " + why;
    } else if (MakeCopyFile(path, task, candidate.LeftOut)) {
      tasks.push_back(std::move(task));
      indices.push_back(i);
    }
  }
  return tasks;
}

bool DocumentPreparation::MakeCopyFile(const std::string& folder, PreparingTask& task, std::string& why) {
  const int index = copies_.Highest() + 1;
  SystemError error{ENOMEM};
  if (copies_.Grow(index)) {
    task.Copy = MakeTempFileName(files_.System(), folder, "Pdf", "", &error, &task.Made);
  }
  if (task.Copy.empty()) {
    why = "no temporary file can be made, because of " + error.Words() + " (\"" + folder + "\")";
    return false;
  }
  copies_.SetCreated(index, task.Copy, task.Made);
  return true;
}

/// Decides what is joined: the copy, the document as it is, or neither. False when the user cancelled.
bool DocumentPreparation::JudgeCopy(Candidate& candidate, const std::string& copy) {
  const DocumentJudgement judgement = judge_.Judge(copy, places_.size() == 1);
  if (judgement.WasCancelled()) return false;
  if (judgement.IsPlain()) {
    files_.Prepared().Add(candidate.Document.Path, {copy, candidate.Known.Identity});
    candidate.Judged = judgement;
    candidate.IsCopied = true;
  } else if (!judgement.IsJoinable() || !candidate.Judged.IsJoinable()) {
    candidate.LeftOut =
        "its copy cannot be joined either: " + FirstObjection(judgement, candidate.Document.Name);
  }
  return true;
}

void DocumentPreparation::Tell(const Candidate& candidate, DirectoryMergeReport& report) const {
  if (!candidate.Needed) return;
  if (!candidate.LeftOut.empty()) return TellLeftOut(candidate, report);
  if (candidate.IsCopied) return TellPrepared(candidate, report);
  logging_.Notice(candidate.Document.Name + ": joined as it is, as its copy would not be better (" +
                  FirstObjection(candidate.Judged, candidate.Document.Name) + ")");
}

void DocumentPreparation::TellLeftOut(const Candidate& candidate, DirectoryMergeReport& report) const {
  const std::string& name = candidate.Document.Name;
  logging_.Notice("File: \"" + name + "\"  is not acceptable for merging");
  logging_.Notice("  because of " + FirstObjection(candidate.Judged, candidate.Document.Name) + "; " +
                  kNotPrepared + candidate.LeftOut + " (\"" + name + "\")");
  report.RefusedDocuments.push_back(name);
}

void DocumentPreparation::TellPrepared(const Candidate& candidate, DirectoryMergeReport& report) const {
  const std::string& name = candidate.Document.Name;
  const PreparingResult& result = candidate.Result;
  const std::string reasons = Listed(result.Reasons);
  logging_.Notice(name + ": prepared (" +
                  (reasons.empty() ? FirstObjection(candidate.Judged, candidate.Document.Name) : reasons) +
                  ")");
  const std::string lost = name + ": lost: ";
  for (const std::string& loss : result.Losses) logging_.Notice(lost + loss);
  const std::string repaired = name + ": repaired: ";
  for (const std::string& repair : result.Repairs) logging_.Notice(repaired + repair);
  if (result.Repaired) report.RepairedDocuments.push_back(name);
}

}  // namespace folioweld
