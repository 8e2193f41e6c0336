#pragma once

#include "dirmerge/arguments.h"
#include "dirmerge/program_state.h"
#include "engine/settings_store.h"

namespace folioweld {

/// Reads the choices that every start reads: the order of the documents, whether the log is shown, whether
/// the output is displayed. Those never written get their defaults; an order that does not exist becomes 1.
void ReadStartSettings(ProgramState& program, SettingsStore& settings);

/// Puts the choices of the command line in the place of the settings', for this run: nothing is stored.
void TakeChoices(const Arguments& arguments, ProgramState& program);

}  // namespace folioweld
