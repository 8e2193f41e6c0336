#pragma once

#include <cstdint>
#include <string>

#include "dirmerge/carry_choices.h"
#include "engine/merge_state.h"
#include "platform/system_result.h"

namespace folioweld {

/// What a program of this project knows while it runs: the one engine state and the choices and flags that
/// live longer than a merge. Owned by the window or the windowless run.
struct ProgramState {
  MergeState Merge;

  /// 1 by name, -1 by name reversed, 2 by date, -2 by date reversed.
  std::int16_t SortOrder = 1;
  /// Documents that cannot be joined as they are, or not without a warning, are prepared first.
  bool Prepare = false;
  CarryChoices Carry;
  /// A directory merge or an output viewer is in progress.
  bool ExternalBusy = false;

  std::string CommandLine;           ///< as given at the start
  std::string CommandLineOutput;     ///< the output that it names, as a full path
  std::string CommandLineDirectory;  ///< the folder that it names, alone
  SystemError CommandLineError;      ///< why one of them was not reached
};

}  // namespace folioweld
