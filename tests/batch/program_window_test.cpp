// What is no batch command line goes to the window program, where there is a screen.

#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>

#include "tests/batch/program_fixture.h"

namespace folioweld {
namespace {

namespace fs = std::filesystem;

const std::string kHelp =
    " (it is in the package folioweld-window); to join without it: folioweld [OPTION]... [--] OUTPUT "
    "SOURCE...\n";

class WindowProgram : public testing::ProgramFixture {
 protected:
  WindowProgram() {
    folder_.MakeFolder("bin");
    fs::copy_file(setup_.Program, folder_.File("bin/folioweld"));
    setup_.Program = folder_.File("bin/folioweld");
    setup_.Environment.emplace_back("DISPLAY", ":4711");
  }

  /// A program that tells its arguments, one a line.
  void AddWindowProgram(const std::string& folder, const std::string& sign) const {
    folder_.MakeFolder(folder);
    const std::string path = folder_.Write(folder + "/folioweld-window",
                                           "#!/bin/sh\necho " + sign + "\nprintf '%s\\n' \"$@\"\nexit 17\n");
    ASSERT_EQ(::chmod(path.c_str(), 0700), 0);
  }
};

TEST_F(WindowProgram, BesideTheProgramGetsTheArgumentsAndGivesTheStatus) {
  AddWindowProgram("bin", "beside");
  const Outcome outcome = Run({"", "|docs", "-x y"});
  EXPECT_EQ(outcome.Status, 17);
  EXPECT_EQ(outcome.Output, "beside\n\n|docs\n-x y\n");
}

TEST_F(WindowProgram, OpensOnEitherKindOfScreen) {
  AddWindowProgram("bin", "beside");
  setup_.Environment.back() = {"WAYLAND_DISPLAY", "wayland-0"};
  EXPECT_EQ(Run({}).Status, 17);
}

TEST_F(WindowProgram, MayLiveInThePrivateFolderOfAnInstallation) {
  AddWindowProgram("libexec/folioweld", "installed");
  const Outcome outcome = Run({});
  EXPECT_EQ(outcome.Status, 17);
  EXPECT_EQ(outcome.Output.rfind("installed\n", 0), 0U);
}

TEST_F(WindowProgram, IsFoundWhenTheProgramIsReachedThroughALink) {
  AddWindowProgram("bin", "beside");
  fs::create_symlink(setup_.Program, folder_.File("link"));
  setup_.Program = folder_.File("link");
  EXPECT_EQ(Run({}).Status, 17);
}

TEST_F(WindowProgram, ThatIsMissingIsToldWithStatusTwo) {
  ExpectRun(
      {}, 2,
      "folioweld: the window program folioweld-window cannot be started: No such file or directory" + kHelp);
}

TEST_F(WindowProgram, ThatMayNotBeStartedIsToldWithItsReason) {
  folder_.Write("bin/folioweld-window", "no program");
  ExpectRun({"a.pdf"}, 2,
            "folioweld: the window program folioweld-window cannot be started: Permission denied" + kHelp);
}

TEST_F(WindowProgram, IsNotAskedForABatchCommandLine) {
  AddWindowProgram("bin", "beside");
  AddDocument("a");
  ExpectRun({"out.pdf", "docs"}, 0, "");
}

}  // namespace
}  // namespace folioweld
