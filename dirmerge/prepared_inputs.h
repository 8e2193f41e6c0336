#pragma once

#include <string>
#include <vector>

#include "dirmerge/document_preparation.h"
#include "dirmerge/logging.h"
#include "dirmerge/program_state.h"
#include "engine/activity_log.h"
#include "engine/file_module.h"
#include "engine/merge_shell.h"
#include "engine/settings_store.h"

namespace folioweld {

/// What comes before "Go" in a window that prepares documents. Until the end of its life the inputs that were
/// prepared are read from their copies. Everything given is owned by the caller and has to outlive this.
class PreparedInputs {
 public:
  PreparedInputs(ProgramState& program, FileModule& files, SettingsStore& settings, MergeShell& shell,
                 ActivityLog& log);

  /// Prepares `DocFileName`(1) and (2), as far as they need it, with the running look. False when the job is
  /// over with that: one of them cannot be prepared, which a box tells, or the user cancelled. It has failed
  /// then like any other.
  [[nodiscard]] bool Prepare();

 private:
  enum class Outcome { Ready, Failed };
  [[nodiscard]] Outcome Run();
  [[nodiscard]] std::string Folder(std::string& why);

  ProgramState& program_;
  FileModule& files_;
  SettingsStore& settings_;
  MergeShell& shell_;
  const Logging logging_;
  DocumentPreparation preparation_;
};

}  // namespace folioweld
