#include "dirmerge/command_line.h"

#include <cerrno>

#include "dirmerge/paths.h"
#include "engine/lexer.h"

namespace folioweld {

namespace {

constexpr char kBar = '|';

bool HoldsBar(const std::string& text) {
  return text.find(kBar) != std::string::npos;
}

/// Enters the folder as it stands, or trimmed when that does not exist; the name that worked, or why none
/// did.
SystemResult<std::string> EnterFolder(WindowsAPI& system, const std::string& text) {
  const std::string trimmed(kSpaceSet.Trim(text));
  SystemError error{ENOENT};
  for (const std::string& folder : {text, trimmed}) {
    std::string full = FullPath(system, folder);
    if (full.empty()) continue;
    error = system.SetCurrentDirectory(full);
    if (!error) return full;
  }
  return error;
}

}  // namespace

std::string CommandLineText(const std::vector<std::string>& arguments) {
  if (arguments.size() == 2 && !HoldsBar(arguments[0]) && !HoldsBar(arguments[1])) {
    return arguments[0] + kBar + arguments[1];
  }
  std::string text;
  for (const std::string& argument : arguments) text += (text.empty() ? "" : " ") + argument;
  return text;
}

bool IsBatchCommandLine(const std::string& commandLine) {
  const std::size_t bar = commandLine.find(kBar);
  return bar != std::string::npos && bar > 0;
}

void LogCommandLine(const ProgramState& program, ActivityLog& log) {
  if (!program.Merge.LogEnabled) return;
  log.AddLogLine("[Folioweld-Form_Activate]=> Command line: " + program.CommandLine);
}

CommandLineOutcome ProcessCommandLine(ProgramState& program, FileModule& files, SettingsStore& settings,
                                      DirectoryMerge& merge) {
  program.CommandLineOutput.clear();
  program.CommandLineDirectory.clear();
  const std::size_t bar = program.CommandLine.find(kBar);
  if (bar == std::string::npos) return CommandLineOutcome::Ignored;
  WindowsAPI& system = files.System();
  const CurrentDirectoryKeeper keeper(system);
  // Taken from here and not from the folder that is entered below.
  const std::string output = FullPath(system, program.CommandLine.substr(0, bar));
  program.Merge.DocFileName(1) = program.CommandLine.substr(bar + 1);
  if (output.empty() && bar > 0) {
    program.CommandLineError = system.GetCurrentDirectory().Error();
    return CommandLineOutcome::OutputNotReached;
  }
  const auto folder = EnterFolder(system, program.Merge.DocFileName(1));
  program.CommandLineError = folder.Error();
  if (!folder.Ok()) return CommandLineOutcome::FolderNotReached;
  program.CommandLineOutput = output;
  program.CommandLineDirectory = WithSeparator(folder.Value());
  static_cast<void>(settings.WriteSetting("MergeCurDir", program.CommandLineDirectory));
  program.Merge.DocFileName(1).clear();
  merge.MenuPdfMergeDir_Click();
  return CommandLineOutcome::Done;
}

}  // namespace folioweld
