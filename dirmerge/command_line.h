#pragma once

#include "dirmerge/arguments.h"
#include "dirmerge/directory_merge.h"
#include "dirmerge/program_state.h"
#include "engine/activity_log.h"
#include "engine/file_module.h"
#include "engine/settings_store.h"

namespace folioweld {

enum class CommandLineOutcome {
  Ignored,           ///< nothing is to be joined
  OutputNotReached,  ///< the output is relative and the current folder cannot be had
  FolderNotReached,  ///< the folder cannot be entered; the first place keeps its text
  Done               ///< a directory merge was run; the program ends
};

/// The log's first line of a run, when the log is on.
void LogCommandLine(const ProgramState& program, ActivityLog& log);

/// Joins what the arguments name. Relative names are taken from the current folder, and an only source that
/// is a folder is stored as "MergeCurDir". What went wrong with a source is told by a message, and the report
/// of `merge` says how it ended. Whenever it is not Done, `CommandLineOutput` and `CommandLineDirectory` are
/// empty afterwards, and `CommandLineError` says why something was not reached.
CommandLineOutcome ProcessCommandLine(const Arguments& arguments, ProgramState& program, FileModule& files,
                                      SettingsStore& settings, DirectoryMerge& merge);

}  // namespace folioweld
