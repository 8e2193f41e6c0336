#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "engine/activity_log.h"
#include "engine/alteration.h"
#include "engine/file_module.h"
#include "engine/merge_job.h"
#include "engine/merge_shell.h"
#include "engine/merge_state.h"

namespace folioweld {

/// Where a document stands in a run.
struct DocumentPlace {
  bool IsFirst = true;
  std::int64_t NumbersAfter = 0;  ///< object numbers of the documents that follow it
};

/// What joining a document would bring.
struct DocumentJudgement {
  PassFailure Refusal;  ///< why it cannot be joined; empty = it can, but perhaps with warnings
  /// What the output would show otherwise, wherever the document stands. What it loses as a later one
  /// together with its catalog is not among them: that depends on the first document, and no other form of
  /// the document would keep it.
  std::vector<Alteration> Warnings;
  std::int32_t Objects = 0;         ///< that the output would hold because of it, as the first document
  std::int32_t ObjectNumbers = 0;   ///< numbers that it takes in the output, object 0's included
  std::int32_t LowestMissing = -1;  ///< the lowest number that it refers to and does not have; -1 = none

  [[nodiscard]] bool IsJoinable() const { return Refusal.Empty(); }
  [[nodiscard]] bool WasCancelled() const { return Refusal.Rule == kCancelled; }
  /// Joinable, and without a warning wherever it stands.
  [[nodiscard]] bool IsPlain() const;
  /// Joinable, and without a warning in this place.
  [[nodiscard]] bool IsPlainAt(const DocumentPlace& place) const;
};

/// Tries documents, each as every merge would read and check it, as the first input and as a later one.
/// Nothing is written, shown or logged. Everything given is owned by the caller and has to outlive this.
class DocumentJudge {
 public:
  /// Events are handled by `shell`, and a cancel is seen in `watched`.
  DocumentJudge(FileModule& files, MergeShell& shell, const MergeState& watched);

  /// `alone`: no other document is joined with it, so that what needs another one counts for nothing.
  [[nodiscard]] DocumentJudgement Judge(const std::string& path, bool alone = false);

 private:
  /// Keeps status lines to itself and hands on events.
  class QuietShell : public MergeShell {
   public:
    QuietShell(MergeShell& shell, const MergeState& watched, MergeState& state)
        : shell_(shell), watched_(watched), state_(state) {}

   protected:
    void HandleEvents() override;

   private:
    MergeShell& shell_;
    const MergeState& watched_;
    MergeState& state_;
  };

  MergeState state_;
  QuietShell shell_;
  ActivityLog log_;
  MergeJob job_;
};

}  // namespace folioweld
