#include "prepare/prepare_run.h"

#include <cerrno>
#include <filesystem>
#include <gmock/gmock.h>
#include <sys/stat.h>

#include "tests/prepare/prepare_fixture.h"

namespace folioweld {
namespace {

using testing::FaultingSystem;
using ::testing::HasSubstr;
using testing::ReadFile;
using testing::SimpleDocument;

class PrepareRun : public testing::PrepareFixture {
 protected:
  /// Nothing was written, nothing is left behind, and an output that was there is what it was.
  void ExpectNothing(const std::string& why) {
    EXPECT_EQ(Run(SimpleDocument(1)), kNoCopy);
    EXPECT_THAT(system_.Take(), HasSubstr("in.pdf: not written: " + why));
    EXPECT_EQ(folder_.Names(), (std::vector<std::string>{"in.pdf", "out.pdf"}));
    EXPECT_EQ(ReadFile(Out()), "before");
  }
};

TEST_F(PrepareRun, ReplacesAnOutput) {
  folder_.Write("out.pdf", "before");
  EXPECT_EQ(Copied(SimpleDocument(1)).substr(0, 5), "%PDF-");
  EXPECT_EQ(folder_.Names(), (std::vector<std::string>{"in.pdf", "out.pdf"}));
}

TEST_F(PrepareRun, GivesTheOutputTheModeThatTheMaskLeaves) {
  const mode_t old = ::umask(026);
  Copied(SimpleDocument(1));
  ::umask(old);
  struct stat status {};
  ASSERT_EQ(::stat(Out().c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777U, 0640U);
}

TEST_F(PrepareRun, NeverWritesOverItsInput) {
  folder_.Write("in.pdf", SimpleDocument(1));
  std::filesystem::create_hard_link(In(), Out());
  EXPECT_EQ(Run(SimpleDocument(1)), kNoCopy);
  EXPECT_THAT(system_.Take(), HasSubstr("out.pdf\" cannot be written: it is the document \"INPUT\""));
  EXPECT_EQ(ReadFile(In()), SimpleDocument(1));
  EXPECT_EQ(RunPrepare(system_, ParsePrepareArguments({In(), In()})), kNoCopy);
  EXPECT_EQ(ReadFile(In()), SimpleDocument(1));
}

TEST_F(PrepareRun, FollowsNoLinkToItsOutput) {
  std::filesystem::create_symlink(folder_.File("elsewhere"), Out());
  EXPECT_EQ(Run(SimpleDocument(1)), kNoCopy);
  EXPECT_THAT(system_.Take(), HasSubstr("cannot be written: it is a link"));
}

TEST_F(PrepareRun, LeavesNothingBehindWhenTheDiskIsFull) {
  folder_.Write("out.pdf", "before");
  system_.Decide = FaultingSystem::Failing("WriteFile", ENOSPC);
  ExpectNothing("its copy cannot be written: No space left on device\n");
}

TEST_F(PrepareRun, LeavesNothingBehindWhenTheInputCannotBeRead) {
  folder_.Write("out.pdf", "before");
  system_.Decide = FaultingSystem::Failing("ReadFile", EIO);
  ExpectNothing("it cannot be read: Input/output error\n");
}

TEST_F(PrepareRun, LeavesNothingBehindWhenTheOutputCannotGetItsName) {
  folder_.Write("out.pdf", "before");
  system_.Decide = FaultingSystem::Failing("MoveFile", EACCES);
  ExpectNothing("\"" + Out() + "\" cannot be written: Permission denied\n");
}

TEST_F(PrepareRun, LeavesNothingBehindWhenTheLastBytesAreLost) {
  folder_.Write("out.pdf", "before");
  system_.Decide = FaultingSystem::Failing("FlushFileBuffers", EIO);
  ExpectNothing("\"" + Out() + "\" cannot be written: Input/output error\n");
}

TEST_F(PrepareRun, LeavesNothingBehindWhenTheInputChangesMeanwhile) {
  folder_.Write("out.pdf", "before");
  system_.Decide = [&](const FaultingSystem::Call& call, std::size_t) {
    if (call.Is("WriteFile")) folder_.Write("in.pdf", SimpleDocument(2));
    return FaultingSystem::Fault{};
  };
  ExpectNothing("it was changed meanwhile\n");
}

TEST_F(PrepareRun, LeavesNothingBehindWhenASignalCame) {
  folder_.Write("out.pdf", "before");
  system_.Signal = SIGINT;
  ExpectNothing("stopped by a signal\n");
}

TEST_F(PrepareRun, LeavesNothingBehindWhenTheInputIsNoDocument) {
  folder_.Write("out.pdf", "before");
  EXPECT_EQ(Run("This is no PDF document, and longer than forty bytes all the same."), kNoCopy);
  EXPECT_EQ(folder_.Names(), (std::vector<std::string>{"in.pdf", "out.pdf"}));
}

TEST_F(PrepareRun, WritesAllOrNothingWhicheverCallFails) {
  const std::string document = Compressed(SimpleDocument(3));
  const std::string whole = Copied(document);
  const std::size_t calls = system_.Calls.size();
  ASSERT_GT(calls, 20u);
  for (std::size_t failing = 0; failing < calls; ++failing) {
    folder_.Write("out.pdf", "before");
    system_.Calls.clear();
    system_.Decide = [&](const FaultingSystem::Call& call, std::size_t index) {
      // What cannot be deleted stays.
      return FaultingSystem::Fault{index == failing && call.Name != "DeleteFile" ? EIO : 0};
    };
    const PrepareStatus status = Run(document);
    const std::string& name = system_.Calls.size() > failing ? system_.Calls[failing].Name : "none";
    EXPECT_EQ(folder_.Names(), (std::vector<std::string>{"in.pdf", "out.pdf"})) << failing << " " << name;
    EXPECT_EQ(ReadFile(Out()), status == kNoCopy ? "before" : whole) << failing << " " << name;
  }
}

TEST_F(PrepareRun, RepairsATableThatIsDamagedAndSaysSo) {
  std::string document = SimpleDocument(2);
  document.replace(document.find("startxref") + 10, 2, "99");
  EXPECT_EQ(Run(document), kCopyRepaired);
  EXPECT_THAT(system_.Take(),
              HasSubstr("in.pdf: repaired: Attempting to reconstruct cross-reference table\n"));
}

TEST_F(PrepareRun, TellsANameThatATerminalWouldObeyWithoutItsControls) {
  EXPECT_EQ(RunPrepare(system_, ParsePrepareArguments({"no\033[2J\nfile", Out()})), kNoCopy);
  EXPECT_EQ(system_.Take(),
            "folioweld-prepare: no?[2J file: not written: it cannot be opened: No such file or directory\n");
}

}  // namespace
}  // namespace folioweld
