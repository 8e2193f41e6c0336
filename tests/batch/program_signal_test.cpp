// The program is told to stop in the middle of a long merge.

#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <string>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>
#include <vector>

#include "tests/batch/program_fixture.h"

namespace folioweld {
namespace {

using testing::ChildProgram;
using testing::Exists;
using testing::HasEnded;
using testing::ReadFile;
using testing::WaitUntil;

class StopSignals : public testing::ProgramFixture {
 protected:
  StopSignals() { setup_.Arguments = {"out.pdf", "docs"}; }

  [[nodiscard]] bool WaitForTemporaries(std::size_t count) const {
    return WaitUntil([&] { return Temporaries().size() >= count; });
  }

  void ExpectStoppedBy(int signal, const std::string& name) {
    AddLongMerge();
    ChildProgram program(setup_);
    ASSERT_TRUE(WaitForTemporaries(2));
    program.Signal(signal);
    EXPECT_EQ(program.Wait(), 128 + signal);
    ExpectNothingLeft();
    EXPECT_EQ(program.Output(), "");
    EXPECT_EQ(program.Errors(), "folioweld: ended by " + name + "; no output was written\n");
  }

  static bool HasOpen(const ChildProgram& program, const std::string& path) {
    std::error_code gone;
    for (const auto& file : std::filesystem::directory_iterator(ProcFolder(program) + "fd", gone)) {
      if (std::filesystem::read_symlink(file, gone) == path) return IsStarted(program);
    }
    return false;
  }

  /// It is no longer the test's own process that is going to become the program.
  static bool IsStarted(const ChildProgram& program) {
    std::error_code gone;
    return std::filesystem::read_symlink(ProcFolder(program) + "exe", gone) == FOLIOWELD_PROGRAM;
  }

  /// It is the program by now and waits, for ever as far as one can see.
  static bool HasSettled(const ChildProgram& program) {
    for (int look = 0; look < 20; ++look) {
      std::string stat;
      std::getline(std::ifstream(ProcFolder(program) + "stat"), stat);
      if (stat.find("(folioweld) S") == std::string::npos) return false;
    }
    return true;
  }

  static std::string ProcFolder(const ChildProgram& program) {
    return "/proc/" + std::to_string(program.Id()) + "/";
  }

  void ExpectNothingLeft() const {
    EXPECT_TRUE(Temporaries().empty());
    EXPECT_FALSE(Exists(folder_.File("out.pdf")));
    EXPECT_EQ(Pages(Doc(kLongMergeDocument)), kLongMergePages);
  }
};

TEST_F(StopSignals, InterruptEndsTheRunByItself) {
  ExpectStoppedBy(SIGINT, "SIGINT");
}

TEST_F(StopSignals, TerminationRequestEndsTheRunByItself) {
  ExpectStoppedBy(SIGTERM, "SIGTERM");
}

TEST_F(StopSignals, EndOfTheTerminalEndsTheRunByItself) {
  ExpectStoppedBy(SIGHUP, "SIGHUP");
}

TEST_F(StopSignals, QuitCleansUpAndEndsTheRunByItself) {
  setup_.BeforeStart = [] {
    constexpr struct rlimit kNone {};
    ::setrlimit(RLIMIT_CORE, &kNone);
  };
  ExpectStoppedBy(SIGQUIT, "SIGQUIT");
}

TEST_F(StopSignals, ASignalThatIsIgnoredAtTheStartStaysIgnored) {
  AddLongMerge();
  setup_.IgnoredSignals = {SIGINT, SIGHUP, SIGQUIT};
  ChildProgram program(setup_);
  ASSERT_TRUE(WaitForTemporaries(2));
  for (const int signal : setup_.IgnoredSignals) program.Signal(signal);
  EXPECT_TRUE(WaitForTemporaries(4)) << "it goes on";
  program.Signal(SIGTERM);
  EXPECT_EQ(program.Wait(), 128 + SIGTERM);
}

TEST_F(StopSignals, WaitingForTheSettingsLockEndsWithTheSignal) {
  AddDocument("a");
  folder_.MakeFolder("config/folioweld");
  const std::string lock = folder_.Write("config/folioweld/settings.ini.lock", "");
  const int held = ::open(lock.c_str(), O_RDWR | O_CLOEXEC);
  ASSERT_EQ(::flock(held, LOCK_EX), 0);
  // The lock is waited for by the clock, for 2 seconds. A run that takes so long says nothing of the signal:
  // where the machine stalled, another one does.
  EXPECT_TRUE(WaitUntil([&] {
    const auto start = std::chrono::steady_clock::now();
    ChildProgram program(setup_);
    EXPECT_TRUE(WaitUntil([&] { return HasOpen(program, lock) || HasEnded(program.Id()); }));
    program.Signal(SIGTERM);
    const int status = program.Wait();
    if (std::chrono::steady_clock::now() - start >= std::chrono::seconds(2)) return false;
    EXPECT_EQ(status, 128 + SIGTERM);
    EXPECT_EQ(program.Errors(), "folioweld: ended by SIGTERM; no output was written\n");
    return true;
  }));
  ::close(held);
}

TEST_F(StopSignals, SettingsLockThatIsNotGivenBackDelaysTheRunAndNothingElse) {
  AddDocument("a");
  folder_.MakeFolder("config/folioweld");
  const std::string lock = folder_.Write("config/folioweld/settings.ini.lock", "");
  const int held = ::open(lock.c_str(), O_RDWR | O_CLOEXEC);
  ASSERT_EQ(::flock(held, LOCK_EX), 0);
  ExpectRun({"out.pdf", "docs"}, 0,
            "[Folioweld-WriteSetting]=>The settings are not stored: another program holds the lock \"" +
                lock + "\"\n");
  ::close(held);
}

TEST_F(StopSignals, WaitingForAReaderOfStandardErrorEndsWithTheSignal) {
  AddDocument("a");
  folder_.Write("docs/half.pdf", "%PDF-1.4\nno comment");
  setup_.BeforeStart = [] {
    int ends[2];
    if (::pipe(ends) != 0) ::_exit(125);
    ::fcntl(ends[1], F_SETFL, O_NONBLOCK);
    while (::write(ends[1], "x", 1) == 1) continue;
    ::fcntl(ends[1], F_SETFL, 0);
    ::dup2(ends[1], STDERR_FILENO);
  };
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    ChildProgram program(setup_);
    ASSERT_TRUE(WaitUntil([&] { return HasSettled(program); }));
    program.Signal(signal);
    EXPECT_EQ(program.Wait(), 128 + signal);
    EXPECT_FALSE(Exists(folder_.File("out.pdf")));
  }
}

TEST_F(StopSignals, ALoopOfTheShellEndsWithTheRun) {
  AddLongMerge();
  setup_.Arguments = {"-c", R"(for i in 1 2 3; do "$0" out.pdf docs; done)", setup_.Program};
  setup_.Program = "/bin/bash";
  setup_.BeforeStart = [] { ::setpgid(0, 0); };
  ChildProgram shell(setup_);
  ASSERT_TRUE(WaitForTemporaries(2));
  // As the terminal does it: to the shell and to what it runs.
  ASSERT_EQ(::kill(-shell.Id(), SIGINT), 0);
  EXPECT_EQ(shell.Wait(), 128 + SIGINT);
  // A shell that had not begun to wait for the run ends before it.
  EXPECT_TRUE(WaitUntil([&] { return shell.Errors().ends_with('\n'); }));
  EXPECT_EQ(shell.Errors(), "folioweld: ended by SIGINT; no output was written\n");
  ExpectNothingLeft();
}

TEST_F(StopSignals, TheShellSeesTheSignalInTheStatus) {
  AddLongMerge();
  setup_.Arguments = {"-c", R"("$0" out.pdf docs; echo $?)", setup_.Program};
  setup_.Program = "/bin/bash";
  for (const auto& [signal, status] :
       std::vector<std::pair<int, std::string>>{{SIGHUP, "129\n"}, {SIGINT, "130\n"}, {SIGTERM, "143\n"}}) {
    ChildProgram shell(setup_);
    ASSERT_TRUE(WaitForTemporaries(2));
    int run = 0;
    std::ifstream(ProcFolder(shell) + "task/" + std::to_string(shell.Id()) + "/children") >> run;
    ASSERT_GT(run, 0);
    ASSERT_EQ(::kill(run, signal), 0);
    EXPECT_EQ(shell.Wait(), 0);
    EXPECT_EQ(shell.Output(), status);
    ExpectNothingLeft();
  }
}

TEST_F(StopSignals, ExistingOutputStaysWhenItWasNotYetWritten) {
  AddLongMerge();
  folder_.Write("out.pdf", "an older output of some length");
  ChildProgram program(setup_);
  ASSERT_TRUE(WaitForTemporaries(2));
  program.Signal(SIGTERM);
  EXPECT_EQ(program.Wait(), 128 + SIGTERM);
  EXPECT_EQ(ReadFile(folder_.File("out.pdf")), "an older output of some length");
}

TEST_F(StopSignals, TemporaryFilesBelongToTheirOwnerAlone) {
  AddLongMerge();
  ChildProgram program(setup_);
  ASSERT_TRUE(WaitForTemporaries(2));
  program.Signal(SIGSTOP);
  for (const std::string& name : Temporaries()) {
    struct stat status {};
    ASSERT_EQ(::stat(folder_.File("tmp/" + name).c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777U, 0600U);
  }
  program.Signal(SIGTERM);
  program.Signal(SIGCONT);
  EXPECT_EQ(program.Wait(), 128 + SIGTERM);
  ExpectNothingLeft();
}

TEST_F(StopSignals, NobodyReadingStandardErrorDoesNotEndTheProgram) {
  for (const char* name : {"a", "b", "c"}) AddDocument(name);
  folder_.Write("docs/half.pdf", "%PDF-1.4\nno comment");
  setup_.BeforeStart = [] {
    int ends[2];
    if (::pipe(ends) != 0) ::_exit(125);
    ::close(ends[0]);
    ::dup2(ends[1], STDERR_FILENO);
  };
  ExpectRun({"out.pdf", "docs"}, 3, "");
  EXPECT_EQ(Pages(folder_.File("out.pdf")), 3);
}

}  // namespace
}  // namespace folioweld
