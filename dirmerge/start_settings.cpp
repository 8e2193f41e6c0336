#include "dirmerge/start_settings.h"

#include <string>

#include "dirmerge/file_ordering.h"

namespace folioweld {

void ReadStartSettings(ProgramState& program, SettingsStore& settings) {
  std::string value;
  // What cannot be read has its default, and what cannot be stored still holds for this run.
  static_cast<void>(settings.ReadSettingOrDefault("MenuSort", value, "1"));
  program.SortOrder = SortOrderFromSetting(value);
  StoreSortOrder(settings, program.SortOrder);
  static_cast<void>(settings.ReadSettingOrDefault("MenuShowLogWindow", value, "1"));
  program.Merge.LogEnabled = value == "1";
  static_cast<void>(settings.WriteSetting("MenuShowLogWindow", program.Merge.LogEnabled ? "1" : "0"));
  static_cast<void>(settings.ReadSettingOrDefault("DisplayOutputAfterMerge", value, "1"));
  program.Merge.ShowOutputAfterMerge = value == "1";
}

void TakeChoices(const Arguments& arguments, ProgramState& program) {
  if (arguments.SortOrder) program.SortOrder = *arguments.SortOrder;
  program.Prepare = arguments.Prepare;
  program.Carry = arguments.CarryHere();
  if (arguments.Verbose) program.Merge.LogEnabled = true;
}

}  // namespace folioweld
