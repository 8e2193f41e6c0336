#pragma once

#include <functional>
#include <string>
#include <unordered_map>
#include <vector>

#include "dirmerge/directory_merge_report.h"
#include "dirmerge/document_list.h"
#include "dirmerge/logging.h"
#include "dirmerge/preparing_child.h"
#include "dirmerge/temporary_files.h"
#include "engine/document_judge.h"
#include "engine/file_module.h"
#include "engine/merge_shell.h"
#include "engine/merge_state.h"

namespace folioweld {

/// Where the copies are made; empty, with the reason in `why`, when there is no such folder.
using FolderForCopies = std::function<std::string(std::string& why)>;

/// Judges documents before they are joined, and has those prepared that could not be joined, or not without a
/// warning. From then on until the end of its life each of these is read from its copy. Everything given is
/// owned by the caller and has to outlive this.
class DocumentPreparation {
 public:
  DocumentPreparation(FileModule& files, MergeShell& shell, const MergeState& state, const Logging& logging);
  DocumentPreparation(const DocumentPreparation&) = delete;
  DocumentPreparation& operator=(const DocumentPreparation&) = delete;
  /// Deletes the copies.
  ~DocumentPreparation();

  /// Takes those that cannot be joined out of the documents, which are in their order. What was prepared,
  /// repaired or left out is told, and the latter two are reported. False when the user cancelled.
  [[nodiscard]] bool Run(std::vector<ListedDocument>& documents, const FolderForCopies& folder,
                         DirectoryMergeReport& report);

  /// Why one output cannot hold the documents that `Run` has left; empty when it can.
  [[nodiscard]] std::string WhyTooMany() const;

 private:
  /// A document, by its path, and what is known of it.
  struct Candidate {
    ListedDocument Document;
    FileInformation Known;  ///< when it was judged
    DocumentJudgement Judged;
    PreparingResult Result;  ///< where it was prepared
    bool Needed = false;     ///< to be prepared, for one of its places at least
    bool IsCopied = false;
    std::string LeftOut;  ///< why it is not joined
  };

  /// One that is named twice has two.
  struct Place {
    ListedDocument Document;
    std::size_t Index;  ///< in `candidates_`
  };

  [[nodiscard]] bool JudgeAll(const std::vector<ListedDocument>& documents);
  [[nodiscard]] bool JudgeNew(const ListedDocument& document, bool alone);
  void FindNeeded();
  [[nodiscard]] bool PrepareNeeded(const FolderForCopies& folder);
  [[nodiscard]] std::vector<PreparingTask> MakeTasks(const FolderForCopies& folder,
                                                     std::vector<std::size_t>& indices);
  [[nodiscard]] bool MakeCopyFile(const std::string& folder, PreparingTask& task, std::string& why);
  [[nodiscard]] bool JudgeCopy(Candidate& candidate, const std::string& copy);
  void Tell(const Candidate& candidate, DirectoryMergeReport& report) const;
  void TellLeftOut(const Candidate& candidate, DirectoryMergeReport& report) const;
  void TellPrepared(const Candidate& candidate, DirectoryMergeReport& report) const;

  FileModule& files_;
  MergeShell& shell_;
  const MergeState& state_;
  const Logging& logging_;
  DocumentJudge judge_;
  TemporaryFiles copies_;
  std::vector<Candidate> candidates_;
  std::unordered_map<std::string, std::size_t> byPath_;
  std::vector<Place> places_;
};

}  // namespace folioweld
