#include "batch/batch_run.h"

#include "batch/batch_shell.h"
#include "dirmerge/command_line.h"
#include "dirmerge/directory_merge.h"
#include "dirmerge/start_settings.h"
#include "engine/activity_log.h"
#include "engine/file_module.h"
#include "engine/settings_store.h"

namespace folioweld {

ExitStatus RunBatch(WindowsAPI& system, const std::string& commandLine) {
  ProgramState program;
  program.CommandLine = commandLine;
  // A signal that cannot be caught still ends the program, only without the clean-up.
  static_cast<void>(system.CatchStopSignals(StopRule::EndByIt));
  BatchShell shell(system, program.Merge);
  ActivityLog log(shell);
  FileModule files(system);
  files.SetLog(&log);
  SettingsStore settings(system);
  ReadStartSettings(program, settings);
  settings.TellTo([&](const std::string& line) {
    if (program.Merge.LogEnabled) log.AddLogLine(line);
    shell.Notice(line);
  });
  DirectoryMerge merge(program, files, settings, shell, log);
  LogCommandLine(program, log);
  const CommandLineOutcome outcome = ProcessCommandLine(program, files, settings, merge);
  if (outcome == CommandLineOutcome::Done) return StatusOf(merge.Report());
  shell.ShowMessage(MessageIcon::Exclamation, "Folioweld",
                    outcome == CommandLineOutcome::OutputNotReached
                        ? "the folder in which the program was started cannot be had"
                        : "the folder \"" + program.Merge.DocFileName(1) + "\" cannot be entered");
  shell.Notice("[Folioweld-ProcessCommandLine]=>  because of " + program.CommandLineError.Words());
  return kNoOutput;
}

}  // namespace folioweld
