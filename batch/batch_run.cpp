#include "batch/batch_run.h"

#include "batch/batch_shell.h"
#include "dirmerge/command_line.h"
#include "dirmerge/file_ordering.h"
#include "engine/activity_log.h"
#include "engine/file_module.h"
#include "engine/settings_store.h"

namespace folioweld {

ExitStatus StatusOf(const DirectoryMergeReport& report) {
  if (!report.OutputWritten) return kNoOutput;
  return report.Complete() ? kEverythingJoined : kJoinedWithLosses;
}

void ReadStartSettings(ProgramState& program, SettingsStore& settings) {
  std::string value;
  static_cast<void>(settings.ReadSettingOrDefault("MenuSort", value, "1"));
  program.SortOrder = SortOrderFromSetting(value);
  StoreSortOrder(settings, program.SortOrder);
  static_cast<void>(settings.ReadSettingOrDefault("MenuShowLogWindow", value, "1"));
  program.Merge.LogEnabled = value == "1";
  static_cast<void>(settings.WriteSetting("MenuShowLogWindow", program.Merge.LogEnabled ? "1" : "0"));
  static_cast<void>(settings.ReadSettingOrDefault("DisplayOutputAfterMerge", value, "1"));
  program.Merge.ShowOutputAfterMerge = value == "1";
}

ExitStatus RunBatch(WindowsAPI& system, const std::string& commandLine) {
  ProgramState program;
  program.CommandLine = commandLine;
  // A signal that cannot be caught still ends the program, only without the clean-up.
  static_cast<void>(system.CatchStopSignals());
  BatchShell shell(system, program.Merge);
  ActivityLog log(shell);
  FileModule files(system);
  files.SetLog(&log);
  SettingsStore settings(system);
  ReadStartSettings(program, settings);
  DirectoryMerge merge(program, files, settings, shell, log);
  if (program.Merge.LogEnabled) log.AddLogLine("[Folioweld-Form_Activate]=> Command line: " + commandLine);
  const CommandLineOutcome outcome = ProcessCommandLine(program, files, settings, merge);
  if (outcome == CommandLineOutcome::Done) return StatusOf(merge.Report());
  shell.ShowMessage(MessageIcon::Exclamation, "Folioweld",
                    outcome == CommandLineOutcome::OutputNotReached
                        ? "the folder in which the program was started cannot be had"
                        : "the folder \"" + program.Merge.DocFileName(1) + "\" cannot be entered");
  return kNoOutput;
}

}  // namespace folioweld
