#include "batch/stopped_run.h"

#include <csignal>
#include <string>

#include "batch/error_output.h"

namespace folioweld {

namespace {

std::string NameOf(int signal) {
  switch (signal) {
    case SIGINT:
      return "SIGINT";
    case SIGTERM:
      return "SIGTERM";
    case SIGHUP:
      return "SIGHUP";
    default:
      return "SIGQUIT";
  }
}

}  // namespace

void EndIfStopped(WindowsAPI& system, ExitStatus status) {
  const int signal = system.ReleaseStopSignals();
  if (signal == 0) return;
  const bool written = status == kEverythingJoined || status == kJoinedWithLosses;
  WriteError(system, "folioweld: ended by " + NameOf(signal) +
                         (written ? "; the output was written before" : "; no output was written") + "\n");
  system.EndBySignal(signal);
}

}  // namespace folioweld
