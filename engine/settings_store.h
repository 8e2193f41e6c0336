#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "platform/windows_api.h"

namespace folioweld {

/// What the store itself says about a call. These are codes of its interface and no error numbers of the
/// system.
enum SettingsError {
  kSettingsOk = 0,
  kSettingsKeyFailure = 1011,   ///< the store could not be opened or created
  kSettingsReadFailure = 1012,  ///< the store was opened but could not be read
  kSettingsNoSuchValue = 1387,  ///< the value was never written
  kSettingsOtherFailure = 1015  ///< what is stored there is no settings file
};

/// The user's choices between runs: short texts under names, in one per-user file that is replaced as a
/// whole, under a lock, and readable by its owner only. No message is shown and no error raised: a failed
/// read ends in the default, a failed write in a result other than 0.
///
/// The names: "MenuSort", "MenuShowLogWindow", "DisplayOutputAfterMerge", "MergeCurDir", "MergeTmpDir".
class SettingsStore {
 public:
  explicit SettingsStore(WindowsAPI& system);
  SettingsStore(const SettingsStore&) = delete;
  SettingsStore& operator=(const SettingsStore&) = delete;
  ~SettingsStore();

  // Each of these closes a key that is still open first and starts afresh.

  /// The store exists and is now open.
  [[nodiscard]] bool OpenSettingsKey();
  /// 1 = created, empty; 3 = failure.
  [[nodiscard]] int CreateSettingsKey();
  /// 2 = an existing one was opened, 1 = created, 3 = failure.
  [[nodiscard]] int EnsureSettingsKey();
  void CloseSettingsKey();

  /// The text up to its first NUL, or empty; the outcome is left in `LastError`.
  [[nodiscard]] std::string ReadSetting(const std::string& name);
  /// 0 on success, else a `SettingsError` or, where the system refused a call, its error number.
  [[nodiscard]] int WriteSetting(const std::string& name, const std::string& text);
  /// The text, or the default; a value that was never written gets the default written, unless another
  /// process writes it first. 0 on success.
  [[nodiscard]] int ReadSettingOrDefault(const std::string& name, std::string& text,
                                         const std::string& defaultText);

  /// Where it is told, in one line for the log, that settings are not stored as another program holds their
  /// lock. It is waited for once, for at most two seconds; what could not be told before is told now.
  void TellTo(std::function<void(const std::string&)> tell);

  /// Of the last read.
  [[nodiscard]] SettingsError LastError() const { return lastError_; }

  /// The settings file's full path; empty when the user has no home.
  [[nodiscard]] std::string FilePath();

  WindowsAPI::Handle SettingsKey = -1;  ///< -1 = not open

 private:
  /// What went wrong, said by the store or by the system; nothing when both fields are 0.
  struct [[nodiscard]] Outcome {
    SettingsError Own = kSettingsOk;
    SystemError System;

    Outcome() = default;
    Outcome(SettingsError own) : Own(own) {}         // NOLINT(google-explicit-constructor)
    Outcome(SystemError system) : System(system) {}  // NOLINT(google-explicit-constructor)

    explicit operator bool() const { return Own != kSettingsOk || System; }
    /// As the interface gives it.
    [[nodiscard]] int Code() const { return Own != kSettingsOk ? Own : System.Code; }
  };

  [[nodiscard]] SystemError MakeFolder();
  [[nodiscard]] Outcome ReadAndClose(std::string& text);
  [[nodiscard]] SystemError ReplaceFile(std::string_view text);
  /// What becomes of a text that another process stored in the meantime.
  enum class Stored { Replace, Keep };
  [[nodiscard]] Outcome Store(const std::string& name, const std::string& text, Stored stored);
  [[nodiscard]] Outcome ReplaceUnderLock(const std::string& name, const std::string& text, Stored stored);
  void NoteLock(SystemError error);
  void TellUntold();
  [[nodiscard]] SystemError WriteWhole(WindowsAPI::Handle file, std::string_view text);

  WindowsAPI& system_;
  SettingsError lastError_ = kSettingsOk;
  bool waitedInVain_ = false;
  std::string untold_;
  std::function<void(const std::string&)> tell_;
};

}  // namespace folioweld
