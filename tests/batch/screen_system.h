#pragma once

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <string>
#include <utility>

#include "tests/support/faulting_system.h"

namespace folioweld::testing {

/// A system whose standard error, clock and stop signals belong to the test.
class ScreenSystem : public FaultingSystem {
 public:
  bool ErrorOutputIsTerminal() override { return IsTerminal; }
  bool ErrorOutputIsInForeground() override {
    const bool is = IsInForeground;
    if (++Looks == StopAtLook) StopComes();
    return is;
  }
  bool PutOffStops(bool putOff) override {
    const bool before = std::exchange(StopsArePutOff, putOff);
    if (StopIsPending && !putOff) StopComes();
    return before;
  }
  int TimesContinued() override { return Continued; }
  int TerminalColumns() override { return Columns; }
  SystemResult<std::size_t> WriteErrorOutput(const char* bytes, std::size_t count) override {
    ++Writes;
    WroteInBackground = WroteInBackground || !IsInForeground;
    if (Interruptions > 0) {
      --Interruptions;
      return SystemError{EINTR};
    }
    if (WriteError != 0) return SystemError{WriteError};
    const std::size_t taken = std::min(count, MostBytes);
    Written.append(bytes, taken);
    return taken;
  }
  std::int64_t MillisecondsNow() override { return Now; }
  void WaitForStopSignal(int milliseconds) override { Now += milliseconds; }
  SystemError CatchStopSignals(StopRule /*rule*/) override {
    CatchesSignals = true;
    return {};
  }
  int ReleaseStopSignals() override {
    CatchesSignals = false;
    return Signal;
  }
  void EndBySignal(int signal) override { EndedBy = signal; }
  const volatile std::sig_atomic_t& StopSignal() override { return Signal; }

  /// What was written since the last call.
  std::string Take() {
    std::string written;
    written.swap(Written);
    return written;
  }

  ScreenSystem() { Environment = {{"TERM", "xterm"}}; }

  bool IsTerminal = false;
  bool IsInForeground = true;
  int Looks = 0;        ///< at whether it is
  int StopAtLook = -1;  ///< after which the program is stopped and goes on in the background
  bool StopsArePutOff = false;
  bool WroteInBackground = false;
  int Continued = 0;
  int Columns = 80;
  std::string Written;
  int Writes = 0;
  int WriteError = 0;
  int Interruptions = 0;
  std::size_t MostBytes = static_cast<std::size_t>(-1);
  std::int64_t Now = 0;
  bool CatchesSignals = false;
  int EndedBy = 0;
  volatile std::sig_atomic_t Signal = 0;

 private:
  void StopComes() {
    StopIsPending = StopsArePutOff;
    if (StopIsPending) return;
    ++Continued;
    IsInForeground = false;
  }

  bool StopIsPending = false;
};

}  // namespace folioweld::testing
