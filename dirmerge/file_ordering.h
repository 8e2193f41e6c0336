#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "engine/merge_shell.h"
#include "engine/merge_state.h"
#include "engine/settings_store.h"
#include "platform/windows_api.h"

namespace folioweld {

/// Brings file names into the order in which they are joined: by name or by the time of the last write,
/// forward or reversed. Comparisons are binary, byte by byte: "B" sorts before "a", digits before letters.
class FileOrdering {
 public:
  using LogLine = std::function<void(const std::string&)>;

  /// `log` is called with every line of every stage, without a prefix.
  FileOrdering(WindowsAPI& system, MergeShell& shell, const MergeState& state, LogLine log);

  /// Orders the names, which are taken from the current folder. False when the user cancelled.
  [[nodiscard]] bool Order(std::vector<std::string>& names, std::int16_t sortOrder);

  /// The local time of the file's last write as YYYYMMDDhhmmss, padded with spaces or cut to `width`
  /// characters, followed by the name; spaces alone when the time cannot be had.
  [[nodiscard]] std::string GetDatePrefixedName(const std::string& fileName, std::int16_t width);

  /// Sorts the names from index `first` to `last` ascending, in place; stops when the user cancels.
  void QuickSortNames(std::vector<std::string>& names, std::int16_t first, std::int16_t last);

 private:
  void LogNames(const std::string& label, const std::vector<std::string>& names);
  [[nodiscard]] std::string DateKey(const std::string& fileName);

  WindowsAPI& system_;
  MergeShell& shell_;
  const MergeState& state_;
  LogLine log_;
};

/// The order that a stored "MenuSort" stands for: -2, -1, 1 or 2; anything else counts as 1.
[[nodiscard]] std::int16_t SortOrderFromSetting(const std::string& text);

/// Stores the order under "MenuSort"; the part of `UpdateSortMenu` that needs no menu.
void StoreSortOrder(SettingsStore& settings, std::int16_t sortOrder);

}  // namespace folioweld
