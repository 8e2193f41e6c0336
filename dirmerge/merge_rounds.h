#pragma once

#include <string>
#include <vector>

#include "dirmerge/directory_merge_report.h"
#include "dirmerge/document_list.h"
#include "dirmerge/logging.h"
#include "dirmerge/program_state.h"
#include "dirmerge/temporary_files.h"
#include "engine/activity_log.h"
#include "engine/file_module.h"
#include "engine/merge_job.h"
#include "engine/merge_shell.h"

namespace folioweld {

/// Joins ordered files pairwise, round after round, until one is left. With 5 files a to e: a+b to temporary
/// 0, c+d to temporary 1, e carried as entry 2; then 0+1 to temporary 3, e carried as entry 4; then 3+e to
/// the output. Temporary files live until all rounds are done.
class MergeRounds {
 public:
  MergeRounds(ProgramState& program, FileModule& files, MergeShell& shell, ActivityLog& log, Logging logging);

  /// Runs all rounds over one document or more, in this order, and cleans up. `sequel` is for the output of
  /// the last one; null = nothing.
  void Run(const std::vector<ListedDocument>& documents, const std::string& output,
           const std::string& tmpFolder, DirectoryMergeReport& report, OutputSequel* sequel);

 private:
  struct Round;

  /// A file to be joined, and the documents that it holds; none when it could not be made.
  struct Piece {
    std::string Path;
    std::vector<SourceDocument> Documents;
  };

  [[nodiscard]] bool RunRound(const Round& round, TemporaryFiles& temporaries);
  [[nodiscard]] bool RunPair(const Round& round, int pair, TemporaryFiles& temporaries);
  void CarryOdd(const Round& round);
  [[nodiscard]] bool MakeTemporary(int index, TemporaryFiles& temporaries);
  [[nodiscard]] bool GrowTo(int index, TemporaryFiles& temporaries);
  void Merge(const Piece& first, const Piece* second, const std::string& output, Piece& result);
  void AnnounceMerge(const Piece& first, const Piece* second);
  void NoteOutput(const Piece& whole);

  ProgramState& program_;
  FileModule& files_;
  MergeShell& shell_;
  Logging logging_;
  MergeJob job_;
  std::string output_;
  std::string tmpFolder_;
  DirectoryMergeReport* report_ = nullptr;
  OutputSequel* sequel_ = nullptr;
  std::vector<ListedDocument> accepted_;
  MergeNumber number_;
  std::vector<Piece> filesToMerge_;
  std::vector<Piece> results_;  ///< of the current round, by pair; the next round's `filesToMerge_`
};

}  // namespace folioweld
