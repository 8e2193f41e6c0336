#include "batch/batch_run.h"

#include "batch/batch_shell.h"
#include "batch/error_output.h"
#include "dirmerge/command_line.h"
#include "dirmerge/directory_merge.h"
#include "dirmerge/extra_programs.h"
#include "dirmerge/source_list.h"
#include "dirmerge/start_settings.h"
#include "engine/activity_log.h"
#include "engine/file_module.h"
#include "engine/settings_store.h"

namespace folioweld {

namespace {

std::string ProblemOf(CommandLineOutcome outcome, const ProgramState& program) {
  if (outcome == CommandLineOutcome::OutputNotReached) {
    return "the folder in which the program was started cannot be had";
  }
  return "the folder \"" + program.Merge.DocFileName(1) + "\" cannot be entered";
}

/// What a run says in the end about documents that it was not asked to prepare; empty where it has lost none.
std::string Advice(WindowsAPI& system, const Arguments& arguments, const DirectoryMergeReport& report) {
  const bool lostDocuments = !report.RefusedDocuments.empty() || report.FailedByDocuments > 0;
  if (arguments.Prepare || report.Cancelled || !lostDocuments) return {};
  std::string advice = "folioweld --prepare joins many of these";
  if (FindExtraProgram(system, kPrepareProgram).empty())
    advice += std::string(" (package ") + kExtrasPackage + ")";
  return advice;
}

}  // namespace

ExitStatus RunBatch(WindowsAPI& system, Arguments arguments) {
  std::string problem;
  if (!ReadSourceNames(system, arguments, problem)) {
    WriteError(system, "folioweld: " + ShownOnTerminal(problem) + "\n");
    return kNoOutput;
  }
  ProgramState program;
  program.CommandLine = arguments.Text;
  // A signal that cannot be caught still ends the program, only without the clean-up.
  static_cast<void>(system.CatchStopSignals(StopRule::EndByIt));
  BatchShell shell(system, program.Merge, arguments);
  ActivityLog log(shell);
  FileModule files(system);
  files.SetLog(&log);
  SettingsStore settings(system);
  ReadStartSettings(program, settings);
  TakeChoices(arguments, program);
  settings.TellTo([&](const std::string& line) {
    if (program.Merge.LogEnabled) log.AddLogLine(line);
    shell.Notice(line);
  });
  DirectoryMerge merge(program, files, settings, shell, log);
  LogCommandLine(program, log);
  const CommandLineOutcome outcome = ProcessCommandLine(arguments, program, files, settings, merge);
  ExitStatus status = kNoOutput;
  if (outcome == CommandLineOutcome::Done) {
    status = StatusOf(merge.Report());
  } else {
    shell.ShowMessage(MessageIcon::Exclamation, "Folioweld", ProblemOf(outcome, program));
    const std::string reason =
        "[Folioweld-ProcessCommandLine]=>  because of " + program.CommandLineError.Words();
    if (program.Merge.LogEnabled) log.AddLogLine(reason);
    shell.Notice(reason);
  }
  if (status != kEverythingJoined) shell.PrintKeptNotices();
  const std::string advice = Advice(system, arguments, merge.Report());
  if (!advice.empty()) shell.PrintLine(advice);
  return status;
}

}  // namespace folioweld
