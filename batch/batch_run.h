#pragma once

#include <string>

#include "dirmerge/directory_merge.h"
#include "platform/windows_api.h"

namespace folioweld {

/// How a program of this project ends.
enum ExitStatus {
  kEverythingJoined = 0,  ///< every document of the folder is in the output
  kNoOutput = 1,
  kNotServed = 2,        ///< the command line cannot be served here
  kJoinedWithLosses = 3  ///< the output was written, but a document was refused, is missing or not readable
};

/// The status that a directory merge ends with.
[[nodiscard]] ExitStatus StatusOf(const DirectoryMergeReport& report);

/// Runs the command line's directory merge without a window, with the order kept in the settings.
[[nodiscard]] ExitStatus RunBatch(WindowsAPI& system, const std::string& commandLine);

/// Reads the settings as at any start; those never written get their defaults.
void ReadStartSettings(ProgramState& program, SettingsStore& settings);

}  // namespace folioweld
