// The real system's process, terminal and signals. What changes the process as a whole runs in a child.

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <ctime>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <initializer_list>
#include <limits>
#include <memory>
#include <new>
#include <optional>
#include <poll.h>
#include <string>
#include <sys/ioctl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/posix_api.h"
#include "platform/retry.h"
#include "tests/support/temp_folder.h"

namespace folioweld {
namespace {

using ::testing::ExitedWithCode;
using ::testing::KilledBySignal;

/// Ends a child with 0 when everything held, else with the number of what did not.
[[noreturn]] void ExitWithFirstFailure(std::initializer_list<bool> held) {
  int number = 1;
  for (const bool good : held) {
    if (!good) std::exit(number);
    ++number;
  }
  std::exit(0);
}

bool IsReadable(int file, int timeoutMilliseconds) {
  pollfd waiting{file, POLLIN, 0};
  return ::poll(&waiting, 1, timeoutMilliseconds) == 1;
}

TEST(SystemErrorTest, HasTheSystemsOwnWords) {
  EXPECT_EQ(SystemError{ENOSPC}.Words(), "No space left on device");
  EXPECT_FALSE((SystemError{4711}.Words().empty()));
  EXPECT_FALSE(SystemError{});
  EXPECT_TRUE(SystemError{EIO});
}

TEST(SystemResultTest, IsAValueOrAReason) {
  SystemResult<std::string> good(std::string("value"));
  EXPECT_TRUE(good.Ok());
  EXPECT_EQ(good.Value(), "value");
  good.Value() += "!";
  EXPECT_EQ(good.Value(), "value!");
  const SystemResult<std::string> bad(SystemError{EIO});
  EXPECT_FALSE(bad.Ok());
  EXPECT_EQ(bad.Error().Code, EIO);
  EXPECT_EQ(bad.Value(), "");
}

TEST(RealSystemTest, IsAlwaysTheSame) {
  EXPECT_EQ(&RealSystem(), &RealSystem());
}

TEST(PosixProcessTest, TellsEnvironmentVariables) {
  PosixApi system;
  ::setenv("FOLIOWELD_TEST", "a b", 1);
  EXPECT_EQ(system.GetEnvironmentVariable("FOLIOWELD_TEST"), "a b");
  ::setenv("FOLIOWELD_TEST", "", 1);
  EXPECT_EQ(system.GetEnvironmentVariable("FOLIOWELD_TEST"), "");
  ::unsetenv("FOLIOWELD_TEST");
  EXPECT_EQ(system.GetEnvironmentVariable("FOLIOWELD_TEST"), std::nullopt);
}

TEST(PosixProcessTest, RandomNumbersDiffer) {
  PosixApi system;
  const std::uint32_t first = system.RandomNumber().Value();
  bool differs = false;
  for (int i = 0; i < 5; ++i) differs = differs || system.RandomNumber().Value() != first;
  EXPECT_TRUE(differs);
}

TEST(PosixProcessTest, AMomentIsShownInTheLocalTimeZone) {
  PosixApi system;
  const char* const before = std::getenv("TZ");
  const std::string zone = before == nullptr ? "" : before;
  ::setenv("TZ", "UTC-5:30", 1);
  ::tzset();
  const LocalTime time = system.FileTimeToLocalTime(1234567890).Value();
  EXPECT_EQ(time.Year, 2009);
  EXPECT_EQ(time.Month, 2);
  EXPECT_EQ(time.Day, 14);
  EXPECT_EQ(time.Hour, 5);
  EXPECT_EQ(time.Minute, 1);
  EXPECT_EQ(time.Second, 30);
  EXPECT_EQ(system.FileTimeToLocalTime(-1).Value().Year, 1970) << "5:29:59 of that day in this zone";
  EXPECT_EQ(system.FileTimeToLocalTime(std::numeric_limits<std::int64_t>::max()).Error().Code, EOVERFLOW);
  before == nullptr ? ::unsetenv("TZ") : ::setenv("TZ", zone.c_str(), 1);
  ::tzset();
}

TEST(PosixProcessTest, TheClockNeverGoesBack) {
  PosixApi system;
  const std::int64_t first = system.MillisecondsNow();
  std::int64_t last = first;
  while (last < first + 3) {
    const std::int64_t now = system.MillisecondsNow();
    ASSERT_GE(now, last);
    last = now;
  }
}

TEST(PosixProcessTest, KnowsTheFullPathOfItsProgram) {
  PosixApi system;
  const std::string path = system.GetModuleFileName().Value();
  EXPECT_EQ(path.substr(0, 1), "/");
  EXPECT_TRUE(testing::Exists(path));
  EXPECT_EQ(path.find('\0'), std::string::npos);
}

TEST(PosixProcessDeathTest, BecomesAnotherProgramWithTheArgumentsAsTheyAre) {
  EXPECT_EXIT(
      {
        PosixApi system;
        static_cast<void>(system.ReplaceProcess(
            "/bin/sh", {"sh", "-c", "test \"$1\" = 'a \"b\"' && exit 7", "0", "a \"b\""}));
        std::exit(1);
      },
      ExitedWithCode(7), "");
}

TEST(PosixProcessTest, AProgramThatIsNotThereCannotBeBecome) {
  PosixApi system;
  EXPECT_EQ(system.ReplaceProcess("/no/such/program", {"program"}).Code, ENOENT);
}

TEST(PosixProcessTest, AChildRunsUntilItEndsAndIsThenTakenLeaveOf) {
  PosixApi system;
  int wait[2];
  ASSERT_EQ(::pipe2(wait, O_CLOEXEC), 0);
  const pid_t child = ::fork();
  if (child == 0) {
    char byte = 0;
    ::close(wait[1]);
    ::_exit(::read(wait[0], &byte, 1) == 0 ? 0 : 1);
  }
  EXPECT_TRUE(system.PollProcess(child).Value());
  ::close(wait[1]);
  auto running = system.PollProcess(child);
  while (running.Ok() && running.Value()) running = system.PollProcess(child);
  EXPECT_TRUE(running.Ok());
  EXPECT_EQ(system.PollProcess(child).Error().Code, ECHILD);
  ::close(wait[0]);
}

TEST(PosixProcessTest, AProcessCanBeAskedToEndAndAGroupCannot) {
  PosixApi system;
  const pid_t child = ::fork();
  if (child == 0) {
    for (;;) ::pause();
  }
  EXPECT_FALSE(system.TerminateProcess(child));
  int status = 0;
  EXPECT_EQ(::waitpid(child, &status, 0), child);
  EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGTERM);
  EXPECT_EQ(system.TerminateProcess(child).Code, ESRCH);
  EXPECT_EQ(system.TerminateProcess(0).Code, ESRCH);
  EXPECT_EQ(system.TerminateProcess(-1).Code, ESRCH);
}

TEST(PosixProcessTest, KnowsTheParentOfAProcessWhileThatLives) {
  PosixApi system;
  EXPECT_EQ(system.ParentOfProcess(::getpid()).Value(), ::getppid());
  const pid_t child = ::fork();
  if (child == 0) {
    ::prctl(PR_SET_NAME, "a) R 1 (b");
    ::kill(::getpid(), SIGSTOP);
    ::_exit(0);
  }
  int status = 0;
  EXPECT_EQ(::waitpid(child, &status, WUNTRACED), child);
  EXPECT_EQ(system.ParentOfProcess(child).Value(), ::getpid()) << "whatever the program is called";
  ::kill(child, SIGKILL);
  EXPECT_EQ(::waitpid(child, &status, 0), child);
  EXPECT_EQ(system.ParentOfProcess(child).Error().Code, ENOENT);
  EXPECT_FALSE(system.ParentOfProcess(-1).Ok());
}

TEST(PosixProcessTest, MemoryKeepsWhatItHoldsWhenLargePagesAreAskedFor) {
  constexpr std::size_t kLargePage = 2 * 1024 * 1024;
  const auto free = [](char* memory) { ::operator delete (memory, std::align_val_t{kLargePage}); };
  const std::unique_ptr<char, decltype(free)> memory(
      static_cast<char*>(::operator new (kLargePage, std::align_val_t{kLargePage})), free);
  std::fill_n(memory.get(), kLargePage, 'x');
  PosixApi system;
  const SystemError error = system.PreferLargePages(memory.get(), kLargePage);
  // Not every system has some.
  EXPECT_TRUE(!error || error.Code == EINVAL || error.Code == ENOSYS) << error.Words();
  EXPECT_EQ(std::count(memory.get(), memory.get() + kLargePage, 'x'),
            static_cast<std::ptrdiff_t>(kLargePage));
}

TEST(PosixProcessTest, MemoryThatBeginsWithinAPageHasNoLargePages) {
  char memory[8192];
  char* const within = memory + (reinterpret_cast<std::uintptr_t>(memory) % 4096 == 0 ? 1 : 0);
  PosixApi system;
  EXPECT_TRUE(system.PreferLargePages(within, 4096));
}

TEST(PosixSignalsDeathTest, StopSignalsAreOnlyRememberedAndWakeWhoeverWaits) {
  EXPECT_EXIT(
      {
        PosixApi system;
        const bool none = system.StopSignal() == 0 && system.StopSignalHandle() == -1;
        const bool caught =
            !system.CatchStopSignals(StopRule::Remember) && !system.CatchStopSignals(StopRule::Remember);
        const int handle = system.StopSignalHandle();
        const bool quiet = handle >= 0 && !IsReadable(handle, 0);
        ::raise(SIGINT);
        const bool interrupt = system.StopSignal() == SIGINT && IsReadable(handle, 0);
        ::raise(SIGTERM);
        const bool terminate = system.StopSignal() == SIGTERM;
        for (int i = 0; i < 100000; ++i) ::raise(SIGTERM);
        ExitWithFirstFailure({none, caught, quiet, interrupt, terminate, IsReadable(handle, 0)});
      },
      ExitedWithCode(0), "");
}

TEST(PosixSignalsDeathTest, NobodyWaitsForAStopSignalThatHasCome) {
  EXPECT_EXIT(
      {
        PosixApi system;
        const bool caught = !system.CatchStopSignals(StopRule::Remember);
        ::raise(SIGTERM);
        // The end of one that waits all the same.
        ::alarm(120);
        system.WaitForStopSignal(3'600'000);
        ExitWithFirstFailure({caught});
      },
      ExitedWithCode(0), "");
}

TEST(PosixSignalsDeathTest, ContinuationsAreCountedWhereStopSignalsEndTheProgram) {
  EXPECT_EXIT(
      {
        PosixApi system;
        const bool caught = !system.CatchStopSignals(StopRule::EndByIt);
        const bool none = system.TimesContinued() == 0;
        for (int i = 0; i < 2; ++i) ::raise(SIGCONT);
        ExitWithFirstFailure({caught, none, system.TimesContinued() == 2, system.StopSignal() == 0});
      },
      ExitedWithCode(0), "");
}

TEST(PosixSignalsDeathTest, AStopThatIsPutOffComesWhenItMay) {
  EXPECT_EXIT(
      {
        PosixApi system;
        static volatile std::sig_atomic_t stops = 0;
        std::signal(SIGTSTP, [](int) { stops = stops + 1; });
        const bool free = !system.PutOffStops(true) && system.PutOffStops(true);
        ::raise(SIGTSTP);
        const bool waits = stops == 0;
        const bool wasPutOff = system.PutOffStops(false);
        ExitWithFirstFailure({free, waits, wasPutOff, stops == 1, !system.PutOffStops(false)});
      },
      ExitedWithCode(0), "");
}

TEST(PosixSignalsDeathTest, TheEndOfTheTerminalIsAStopSignalToo) {
  EXPECT_EXIT(
      {
        PosixApi system;
        std::signal(SIGHUP, SIG_DFL);
        const bool caught = !system.CatchStopSignals(StopRule::Remember);
        ::raise(SIGHUP);
        ExitWithFirstFailure({caught, system.StopSignal() == SIGHUP});
      },
      ExitedWithCode(0), "");
}

TEST(PosixSignalsDeathTest, ASignalThatIsIgnoredStaysIgnored) {
  for (const StopRule rule : {StopRule::Remember, StopRule::EndByIt}) {
    EXPECT_EXIT(
        {
          PosixApi system;
          for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT}) std::signal(signal, SIG_IGN);
          const bool caught = !system.CatchStopSignals(rule);
          for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT}) ::raise(signal);
          const bool none = system.StopSignal() == 0 && system.ReleaseStopSignals() == 0;
          for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT}) ::raise(signal);
          ExitWithFirstFailure({caught, none});
        },
        ExitedWithCode(0), "");
  }
}

TEST(PosixSignalsDeathTest, ASecondSignalAtOnceIsTheSameOne) {
  EXPECT_EXIT(
      {
        PosixApi system;
        const bool caught = !system.CatchStopSignals(StopRule::EndByIt);
        ::raise(SIGINT);
        ::raise(SIGTERM);
        ExitWithFirstFailure({caught, system.StopSignal() == SIGINT});
      },
      ExitedWithCode(0), "");
}

TEST(PosixSignalsDeathTest, ASecondSignalEndsWhatDoesNotEndByItself) {
  for (const int second : {SIGINT, SIGTERM, SIGHUP, SIGQUIT}) {
    EXPECT_EXIT(
        {
          PosixApi system;
          if (system.CatchStopSignals(StopRule::EndByIt)) std::exit(1);
          ::raise(SIGINT);
          ::raise(second);
          for (;;) ::pause();
        },
        KilledBySignal(second), "");
  }
}

TEST(PosixSignalsDeathTest, OneSignalEndsNothingByItself) {
  EXPECT_EXIT(
      {
        PosixApi system;
        const bool caught = !system.CatchStopSignals(StopRule::EndByIt);
        ::raise(SIGQUIT);
        // More ticks than a second signal would have to wait for, however late they come.
        int interruptions = 0;
        while (interruptions < 6 && ::poll(nullptr, 0, 60'000) < 0) ++interruptions;
        ExitWithFirstFailure({caught, interruptions == 6, system.StopSignal() == SIGQUIT});
      },
      ExitedWithCode(0), "");
}

TEST(PosixSignalsDeathTest, ReleasedTheSignalsEndTheProcessAgain) {
  EXPECT_EXIT(
      {
        PosixApi system;
        if (system.CatchStopSignals(StopRule::EndByIt)) std::exit(1);
        if (system.ReleaseStopSignals() != 0) std::exit(2);
        ::raise(SIGHUP);
      },
      KilledBySignal(SIGHUP), "");
}

TEST(PosixSignalsDeathTest, TheProcessEndsByTheSignalThatIsAskedFor) {
  EXPECT_EXIT(
      {
        PosixApi system;
        if (system.CatchStopSignals(StopRule::EndByIt)) std::exit(1);
        ::raise(SIGINT);
        system.EndBySignal(system.ReleaseStopSignals());
      },
      KilledBySignal(SIGINT), "");
}

TEST(PosixSignalsDeathTest, UncaughtAStopSignalEndsTheProcess) {
  EXPECT_EXIT(
      {
        const PosixApi system;
        ::raise(SIGTERM);
        std::exit(0);
      },
      KilledBySignal(SIGTERM), "");
}

TEST(PosixErrorOutputDeathTest, GoesToStandardErrorAndAClosedPipeIsAnError) {
  EXPECT_EXIT(
      {
        PosixApi system;
        int ends[2];
        const bool made = ::pipe2(ends, O_CLOEXEC) == 0 && ::dup2(ends[1], STDERR_FILENO) == STDERR_FILENO;
        const bool plain = !system.ErrorOutputIsTerminal() && system.TerminalColumns() == 80;
        const auto written = system.WriteErrorOutput("text", 4);
        char bytes[8] = {};
        const bool arrived = written.Ok() && written.Value() == 4 && ::read(ends[0], bytes, 8) == 4 &&
                             std::string(bytes) == "text";
        ::close(ends[0]);
        const bool broken = system.WriteErrorOutput("text", 4).Error().Code == EPIPE;
        ExitWithFirstFailure({made, plain, arrived, broken});
      },
      ExitedWithCode(0), "");
}

TEST(PosixErrorOutputDeathTest, ATerminalIsKnownWithItsColumns) {
  EXPECT_EXIT(
      {
        PosixApi system;
        const int terminal = ::posix_openpt(O_RDWR | O_NOCTTY);
        const bool ready = ::grantpt(terminal) == 0 && ::unlockpt(terminal) == 0;
        const int screen = ::open(::ptsname(terminal), O_RDWR | O_NOCTTY);
        const bool made = ready && ::dup2(screen, STDERR_FILENO) == STDERR_FILENO;
        const bool unknown = system.ErrorOutputIsTerminal() && system.TerminalColumns() == 80;
        winsize size{};
        size.ws_col = 133;
        const bool set = ::ioctl(STDERR_FILENO, TIOCSWINSZ, &size) == 0;
        ExitWithFirstFailure({made, unknown, set, system.TerminalColumns() == 133});
      },
      ExitedWithCode(0), "");
}

TEST(PosixErrorOutputDeathTest, AClosedStandardStreamNeverBecomesADocument) {
  EXPECT_EXIT(
      {
        const testing::TempFolder folder;
        for (int stream = 0; stream <= 2; ++stream) ::close(stream);
        PosixApi system;
        const auto file = system.CreateFile(folder.File("out"), OpenMode::WriteKeep);
        const bool apart = file.Ok() && file.Value() > STDERR_FILENO;
        const bool taken = system.WriteErrorOutput("message", 7).Ok();
        ExitWithFirstFailure({apart, taken, testing::ReadFile(folder.File("out")).empty()});
      },
      ExitedWithCode(0), "");
}

TEST(RetryInterruptedTest, MakesTheCallAgainWhileItIsInterruptedButNotForEver) {
  int calls = 0;
  EXPECT_FALSE(RetryInterrupted([&] { return SystemError{++calls < 5 ? EINTR : 0}; }));
  EXPECT_EQ(calls, 5);
  calls = 0;
  const auto refused = RetryInterrupted([&]() -> SystemResult<int> {
    ++calls;
    return SystemError{EACCES};
  });
  EXPECT_EQ(refused.Error().Code, EACCES);
  EXPECT_EQ(calls, 1) << "another error is final";
  calls = 0;
  EXPECT_EQ(RetryInterrupted([&] { return SystemError{++calls > 0 ? EINTR : 0}; }).Code, EINTR);
  EXPECT_EQ(calls, kMostInterruptions + 1);
}

TEST(TransferAllTest, GoesOnUntilEverythingIsMoved) {
  std::string moved;
  const std::string text = "0123456789";
  const SystemError error = TransferAll(text.size(), [&](std::size_t done) -> SystemResult<std::size_t> {
    const std::string part = text.substr(done, 3);
    moved += part;
    return part.size();
  });
  EXPECT_FALSE(error);
  EXPECT_EQ(moved, text);
  EXPECT_EQ(TransferAll(1, [](std::size_t) { return SystemResult<std::size_t>(std::size_t{0}); }).Code, EIO);
  EXPECT_EQ(TransferAll(1, [](std::size_t) -> SystemResult<std::size_t> { return SystemError{ENOSPC}; }).Code,
            ENOSPC);
  EXPECT_FALSE(TransferAll(0, [](std::size_t) -> SystemResult<std::size_t> { return SystemError{EIO}; }));
}

}  // namespace
}  // namespace folioweld
