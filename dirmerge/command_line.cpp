#include "dirmerge/command_line.h"

#include <cerrno>

#include "dirmerge/paths.h"
#include "dirmerge/source_list.h"
#include "engine/lexer.h"

namespace folioweld {

namespace {

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

class CommandLineJob {
 public:
  CommandLineJob(ProgramState& program, FileModule& files, SettingsStore& settings, DirectoryMerge& merge)
      : program_(program), system_(files.System()), settings_(settings), merge_(merge), keeper_(system_) {}

  /// "output|folder", the output perhaps empty.
  CommandLineOutcome JoinFolder(const std::string& text) {
    const std::size_t bar = text.find(kBar);
    program_.Merge.DocFileName(1) = text.substr(bar + 1);
    if (!TakeOutput(text.substr(0, bar))) return CommandLineOutcome::OutputNotReached;
    const auto folder = EnterFolder(system_, program_.Merge.DocFileName(1));
    program_.CommandLineError = folder.Error();
    if (!folder.Ok()) {
      program_.CommandLineOutput.clear();
      return CommandLineOutcome::FolderNotReached;
    }
    program_.Merge.DocFileName(1).clear();
    return MergeFolder(WithSeparator(folder.Value()));
  }

  CommandLineOutcome JoinSources(const Arguments& arguments) {
    if (!TakeOutput(arguments.Output)) return CommandLineOutcome::OutputNotReached;
    std::string problem;
    const std::vector<Source> sources = FindSources(system_, arguments.Sources, problem);
    if (sources.size() == 1 && sources[0].IsFolder) return MergeFolder(sources[0].Path);
    merge_.MergeSources(sources, problem);
    return CommandLineOutcome::Done;
  }

 private:
  /// Taken from the folder in which the program was started, before another one is entered.
  bool TakeOutput(const std::string& output) {
    program_.CommandLineOutput = FullPath(system_, output);
    if (output.empty() || !program_.CommandLineOutput.empty()) return true;
    program_.CommandLineError = system_.GetCurrentDirectory().Error();
    return false;
  }

  CommandLineOutcome MergeFolder(const std::string& folder) {
    program_.CommandLineDirectory = folder;
    static_cast<void>(settings_.WriteSetting("MergeCurDir", folder));
    merge_.MenuPdfMergeDir_Click();
    return CommandLineOutcome::Done;
  }

  ProgramState& program_;
  WindowsAPI& system_;
  SettingsStore& settings_;
  DirectoryMerge& merge_;
  CurrentDirectoryKeeper keeper_;
};

}  // namespace

void LogCommandLine(const ProgramState& program, ActivityLog& log) {
  if (!program.Merge.LogEnabled) return;
  log.AddLogLine("[Folioweld-Form_Activate]=> Command line: " + program.CommandLine);
}

CommandLineOutcome ProcessCommandLine(const Arguments& arguments, ProgramState& program, FileModule& files,
                                      SettingsStore& settings, DirectoryMerge& merge) {
  program.CommandLineOutput.clear();
  program.CommandLineDirectory.clear();
  CommandLineJob job(program, files, settings, merge);
  switch (arguments.Asked) {
    case Arguments::Wish::JoinFolder:
      return job.JoinFolder(arguments.FolderText);
    case Arguments::Wish::JoinSources:
      return job.JoinSources(arguments);
    default:
      return CommandLineOutcome::Ignored;
  }
}

}  // namespace folioweld
