#pragma once

#include <csignal>

#include "platform/windows_api.h"

namespace folioweld {

// How `PosixApi` catches the signals that ask the program to end. The handlers' state belongs to the process,
// so these are no members; what each does is said at the methods of `WindowsAPI`.

[[nodiscard]] SystemError CatchSignals(StopRule rule);
[[nodiscard]] int ReleaseSignals();
[[nodiscard]] const volatile std::sig_atomic_t& CaughtSignal();
[[nodiscard]] int ContinuationCount();
/// The end of a pipe that is readable once a signal came; -1 before `CatchSignals` or without a pipe.
[[nodiscard]] int CaughtSignalHandle();
/// Ends the process by the signal; may be called in a handler.
void EndProcessBy(int signal);

/// Makes a signal that would end the process pass over it, unless it is ignored anyway. Handled and not
/// ignored, so that a program started from here gets the system's own way.
void PassOverSignal(int signal);

}  // namespace folioweld
