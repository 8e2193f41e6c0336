#pragma once

#include "dirmerge/program_state.h"
#include "engine/settings_store.h"

namespace folioweld {

/// Reads the choices that every start reads: the order of the documents, whether the log is shown, whether
/// the output is displayed. Those never written get their defaults; an order that does not exist becomes 1.
void ReadStartSettings(ProgramState& program, SettingsStore& settings);

}  // namespace folioweld
