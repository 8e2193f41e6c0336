#pragma once

#include <string>
#include <vector>

#include "dirmerge/program_state.h"
#include "dirmerge/revised_output.h"
#include "engine/activity_log.h"
#include "engine/file_module.h"
#include "engine/merge_shell.h"
#include "engine/output_sequel.h"

namespace folioweld {

class LimitedChild;

/// Has `folioweld-carry` append to a finished output what the catalogs of its later documents hold. Where
/// that fails or is cancelled, the output becomes again what the job wrote. As long as this lives, nobody is
/// warned of what a document loses with its catalog. Everything given is owned by the caller and has to
/// outlive this.
class Carrying : public OutputSequel {
 public:
  Carrying(ProgramState& program, FileModule& files, MergeShell& shell, ActivityLog& log);
  Carrying(const Carrying&) = delete;
  Carrying& operator=(const Carrying&) = delete;
  ~Carrying() override;

  [[nodiscard]] Outcome Run(const FileInformation& output, std::string& words) override;

  /// Nothing was carried over into the last output.
  [[nodiscard]] bool Failed() const { return failed_; }

 private:
  /// What could not be carried over of a document.
  struct Loss {
    std::size_t Document = 0;  ///< index in `DocSources`(3)
    std::string Part;
    std::string Words;
  };

  // Each gives why nothing is carried over, or nothing.
  [[nodiscard]] std::string Carry(RevisedOutput& output, LimitedChild& child);
  [[nodiscard]] std::string Watch(LimitedChild& child);
  [[nodiscard]] std::string TakeWords(const LimitedChild& child);

  [[nodiscard]] bool TakeLoss(const std::string& text);
  [[nodiscard]] std::vector<std::string> Options() const;
  [[nodiscard]] std::string ListOfDocuments() const;
  void ReplaceAlterations();

  ProgramState& program_;
  FileModule& files_;
  MergeShell& shell_;
  ActivityLog& log_;
  std::vector<Loss> losses_;
  bool failed_ = false;
};

}  // namespace folioweld
