#include "platform/stop_signals.h"

#include <array>
#include <cerrno>
#include <fcntl.h>
#include <sys/time.h>
#include <unistd.h>

namespace folioweld {

namespace {

/// The last one is caught by `StopRule::EndByIt` alone.
constexpr std::array kStopSignals{SIGINT, SIGTERM, SIGHUP, SIGQUIT};
constexpr int kMillisecondsPerTick = 50;
/// Some programs send a signal twice, to the process and to its group: so long the second is the same one.
constexpr int kTicksBeforeSecond = 4;

volatile std::sig_atomic_t g_signal = 0;
volatile std::sig_atomic_t g_secondSignal = 0;
volatile std::sig_atomic_t g_ticks = 0;
volatile std::sig_atomic_t g_continued = 0;
std::array<bool, kStopSignals.size()> g_caught{};
/// Reading and writing end of the pipe that wakes whoever waits.
int g_pipe[2] = {-1, -1};

extern "C" void Remember(int signal) {
  const int interrupted = errno;
  g_signal = signal;
  // A full pipe is readable already.
  if (g_pipe[1] >= 0) static_cast<void>(::write(g_pipe[1], "!", 1) < 0);
  errno = interrupted;
}

extern "C" void RememberFirst(int signal) {
  if (g_signal == 0) {
    Remember(signal);
    // A call that begins to wait just after this would not notice: it is interrupted at the next tick.
    constexpr struct timeval kTick { 0, kMillisecondsPerTick * 1000 };
    constexpr struct itimerval kTicking { kTick, kTick };
    static_cast<void>(::setitimer(ITIMER_REAL, &kTicking, nullptr));
  } else if (g_ticks >= kTicksBeforeSecond) {
    EndProcessBy(signal);
  } else {
    g_secondSignal = signal;
  }
}

extern "C" void Tick(int /*signal*/) {
  if (g_ticks < kTicksBeforeSecond) g_ticks = g_ticks + 1;
  if (g_secondSignal != 0 && g_ticks >= kTicksBeforeSecond) EndProcessBy(g_secondSignal);
}

extern "C" void CountContinuation(int /*signal*/) {
  g_continued = g_continued + 1;
}

extern "C" void PassOver(int /*signal*/) {}

SystemError Handle(int signal, void (*handler)(int), int flags) {
  struct sigaction action {};
  action.sa_handler = handler;
  ::sigfillset(&action.sa_mask);
  action.sa_flags = flags;
  return SystemError{::sigaction(signal, &action, nullptr) < 0 ? errno : 0};
}

bool IsIgnored(int signal) {
  struct sigaction present {};
  return ::sigaction(signal, nullptr, &present) == 0 && present.sa_handler == SIG_IGN;
}

/// As at the start of the process.
void Forget() {
  g_signal = 0;
  g_secondSignal = 0;
  g_ticks = 0;
  // Without the pipe the signals are still remembered.
  if (g_pipe[0] < 0) static_cast<void>(::pipe2(g_pipe, O_CLOEXEC | O_NONBLOCK) < 0);
  char earlier = 0;
  while (g_pipe[0] >= 0 && ::read(g_pipe[0], &earlier, 1) > 0) continue;
}

}  // namespace

SystemError CatchSignals(StopRule rule) {
  Forget();
  const bool ends = rule == StopRule::EndByIt;
  if (ends) {
    if (const SystemError error = Handle(SIGALRM, Tick, 0)) return error;
    if (const SystemError error = Handle(SIGCONT, CountContinuation, SA_RESTART)) return error;
  }
  for (std::size_t i = 0; i < kStopSignals.size(); ++i) {
    const int signal = kStopSignals[i];
    // A run that is to outlive its terminal, as under nohup, is not stopped by the terminal's end.
    if (IsIgnored(signal) || (signal == SIGQUIT && !ends)) continue;
    const SystemError error = Handle(signal, ends ? RememberFirst : Remember, ends ? 0 : SA_RESTART);
    if (error) return error;
    g_caught[i] = true;
  }
  return {};
}

int ReleaseSignals() {
  for (std::size_t i = 0; i < kStopSignals.size(); ++i) {
    if (g_caught[i]) static_cast<void>(Handle(kStopSignals[i], SIG_DFL, 0));
    g_caught[i] = false;
  }
  return g_signal;
}

const volatile std::sig_atomic_t& CaughtSignal() {
  return g_signal;
}

int ContinuationCount() {
  return g_continued;
}

int CaughtSignalHandle() {
  return g_pipe[0];
}

void EndProcessBy(int signal) {
  static_cast<void>(Handle(signal, SIG_DFL, 0));
  static_cast<void>(::raise(signal));
  // Within its own handler it has to wait until here.
  sigset_t alone;
  ::sigemptyset(&alone);
  ::sigaddset(&alone, signal);
  static_cast<void>(::sigprocmask(SIG_UNBLOCK, &alone, nullptr));
}

void PassOverSignal(int signal) {
  struct sigaction present {};
  if (::sigaction(signal, nullptr, &present) < 0 || present.sa_handler != SIG_DFL) return;
  static_cast<void>(Handle(signal, PassOver, SA_RESTART));
}

}  // namespace folioweld
