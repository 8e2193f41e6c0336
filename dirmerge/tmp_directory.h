#pragma once

#include <functional>
#include <string>

#include "engine/merge_shell.h"
#include "engine/settings_store.h"
#include "platform/windows_api.h"

namespace folioweld {

/// The user's folder for temporary files, setting "MergeTmpDir". Every folder returned ends in a separator.
class TmpDirectory {
 public:
  TmpDirectory(WindowsAPI& system, SettingsStore& settings, MergeShell& shell);

  /// The stored folder, or the system's when none is stored; empty, and stored as that, when the folder
  /// cannot be entered.
  [[nodiscard]] std::string GetTmpDirectory();

  /// Stores and returns the system's folder; empty, and nothing stored, when it cannot be entered.
  std::string ResetTmpDirectory();

  /// Lets the user pick the folder and stores it; without an answer the stored or the system's one stays.
  /// Empty, and nothing stored, when that cannot be entered.
  std::string ChooseTmpDirectory();

  /// The stored folder, or the user's pick when it cannot be entered.
  [[nodiscard]] std::string RequireTmpDirectory();

  /// The folder that temporary files are made in: the one of `RequireTmpDirectory`, or the system's where
  /// that is not safe, which `tell` is told and which is not stored. Empty, with the reason in `why`, when
  /// none is safe.
  [[nodiscard]] std::string SafeTmpDirectory(const std::function<void(const std::string&)>& tell,
                                             std::string& why);

 private:
  [[nodiscard]] std::string SystemFolder();
  /// The folder, or nothing when it cannot be entered.
  [[nodiscard]] std::string Enterable(const std::string& folder);
  std::string Store(const std::string& folder);

  WindowsAPI& system_;
  SettingsStore& settings_;
  MergeShell& shell_;
  std::string notEntered_;  ///< why the folder that was tried last could not be entered, and which it is
};

}  // namespace folioweld
