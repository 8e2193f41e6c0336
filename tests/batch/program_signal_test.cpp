// The program is told to stop in the middle of a long merge.

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

#include "tests/batch/program_fixture.h"

namespace folioweld {
namespace {

using testing::ChildProgram;
using testing::Exists;
using testing::ReadFile;
using testing::WaitUntil;

class StopSignals : public testing::ProgramFixture {
 protected:
  StopSignals() { setup_.Arguments = {"out.pdf", "docs"}; }

  [[nodiscard]] bool WaitForTemporaries(std::size_t count) const {
    return WaitUntil([&] { return Temporaries().size() >= count; });
  }

  void ExpectStoppedBy(int signal) {
    AddLongMerge();
    ChildProgram program(setup_);
    ASSERT_TRUE(WaitForTemporaries(2));
    program.Signal(signal);
    EXPECT_EQ(program.Wait(), 1);
    ExpectNothingLeft();
    EXPECT_EQ(program.Output(), "");
    ExpectCancelled(program.Errors());
  }

  void ExpectNothingLeft() const {
    EXPECT_TRUE(Temporaries().empty());
    EXPECT_FALSE(Exists(folder_.File("out.pdf")));
    EXPECT_EQ(Pages(Doc("199")), 1500);
  }

  /// The merge that was running, if one was, and the message about the output; nothing else.
  void ExpectCancelled(const std::string& errors) const {
    std::vector<std::string> lines;
    std::istringstream stream(errors);
    for (std::string line; std::getline(stream, line);) lines.push_back(line);
    ASSERT_FALSE(lines.empty());
    EXPECT_EQ(lines.back(), "folioweld: Unable to Merge and Create " + folder_.File("out.pdf"));
    lines.pop_back();
    ASSERT_LE(lines.size(), 1U) << errors;
    if (lines.empty()) return;
    EXPECT_EQ(lines[0].rfind("[Folioweld-cmdOK]=>The merge failed: ", 0), 0U) << lines[0];
    EXPECT_EQ(lines[0].substr(lines[0].size() - 11), ": cancelled") << lines[0];
  }
};

TEST_F(StopSignals, InterruptCancels) {
  ExpectStoppedBy(SIGINT);
}

TEST_F(StopSignals, TerminationRequestCancels) {
  ExpectStoppedBy(SIGTERM);
}

TEST_F(StopSignals, EndOfTheTerminalCancels) {
  ExpectStoppedBy(SIGHUP);
}

TEST_F(StopSignals, ManySignalsDoNoMoreThanOne) {
  AddLongMerge();
  ChildProgram program(setup_);
  ASSERT_TRUE(WaitForTemporaries(2));
  for (int i = 0; i < 20; ++i) program.Signal(i % 2 == 0 ? SIGINT : SIGTERM);
  EXPECT_EQ(program.Wait(), 1);
  ExpectNothingLeft();
}

TEST_F(StopSignals, EndOfTheTerminalIsIgnoredWhereItWasIgnoredAtTheStart) {
  AddLongMerge();
  setup_.IgnoredSignals = {SIGHUP};
  ChildProgram program(setup_);
  ASSERT_TRUE(WaitForTemporaries(2));
  program.Signal(SIGHUP);
  EXPECT_TRUE(WaitForTemporaries(4)) << "it goes on";
  program.Signal(SIGTERM);
  EXPECT_EQ(program.Wait(), 1);
}

TEST_F(StopSignals, ExistingOutputStaysWhenItWasNotYetWritten) {
  AddLongMerge();
  folder_.Write("out.pdf", "an older output of some length");
  ChildProgram program(setup_);
  ASSERT_TRUE(WaitForTemporaries(2));
  program.Signal(SIGTERM);
  EXPECT_EQ(program.Wait(), 1);
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
  EXPECT_EQ(program.Wait(), 1);
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
