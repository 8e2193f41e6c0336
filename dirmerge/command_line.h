#pragma once

#include <string>
#include <vector>

#include "dirmerge/directory_merge.h"
#include "dirmerge/program_state.h"
#include "engine/activity_log.h"
#include "engine/file_module.h"
#include "engine/settings_store.h"

namespace folioweld {

/// The one form that is understood, as told to a user who gave another.
inline constexpr char kCommandLineForm[] = "folioweld \"OUTPUT|FOLDER\" or folioweld OUTPUT FOLDER";

/// The text of the command line: the arguments (without the program's name) with a blank between them. Two
/// arguments without a "|" are the output and the folder, and are given one here.
[[nodiscard]] std::string CommandLineText(const std::vector<std::string>& arguments);

/// Whether the text asks for a directory merge whose output is named, so that no question is left.
[[nodiscard]] bool IsBatchCommandLine(const std::string& commandLine);

enum class CommandLineOutcome {
  Ignored,           ///< no "|" in it
  OutputNotReached,  ///< the output is relative and the current folder cannot be had
  FolderNotReached,  ///< the folder cannot be entered; the first place keeps its text
  Done               ///< a directory merge was run; the program ends
};

/// The log's first line of a run, when the log is on.
void LogCommandLine(const ProgramState& program, ActivityLog& log);

/// Runs `ProgramState::CommandLine` when it has the form "output|folder". Relative parts are taken from the
/// current folder. The folder is stored as "MergeCurDir". Whenever it is not Done, `CommandLineOutput` and
/// `CommandLineDirectory` are empty afterwards, and `CommandLineError` says why something was not reached.
CommandLineOutcome ProcessCommandLine(ProgramState& program, FileModule& files, SettingsStore& settings,
                                      DirectoryMerge& merge);

}  // namespace folioweld
