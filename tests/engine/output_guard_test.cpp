// What keeps an output from being taken for somebody else's file, and the other way round.

#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <sys/file.h>
#include <unistd.h>

#include "tests/engine/file_fixture.h"

namespace folioweld {
namespace {

namespace fs = std::filesystem;
using testing::Exists;
using testing::FaultingSystem;
using testing::ReadFile;

class OutputGuardTest : public testing::FileFixture {};

TEST_F(OutputGuardTest, AnOutputThatAnotherProgramWritesIsRefusedAndStaysAsItIs) {
  const std::string path = Folder.Write("out", "being written");
  const int other = ::open(path.c_str(), O_WRONLY | O_CLOEXEC);
  ASSERT_EQ(::flock(other, LOCK_EX), 0);
  EXPECT_EQ(Files.OpenForBinaryWrite(path), -1);
  EXPECT_EQ(Files.LastError().Code, EBUSY);
  EXPECT_EQ(ReadFile(path), "being written");
  ::close(other);
  EXPECT_GE(Files.OpenForBinaryWrite(path), 1);
}

TEST_F(OutputGuardTest, AFileWithAnotherNameKeepsItsContentsAndTheOutputGetsAFileOfItsOwn) {
  const std::string path = Folder.Write("out", "old contents");
  fs::create_hard_link(path, Folder.File("other"));
  const std::int16_t number = Files.OpenForBinaryWrite(path);
  ASSERT_GE(number, 1);
  EXPECT_TRUE(Files.IsNamed(number, path));
  EXPECT_TRUE(Files.WriteAt(number, "new", 0));
  EXPECT_TRUE(Files.Close(number));
  EXPECT_EQ(ReadFile(path), "new");
  EXPECT_EQ(ReadFile(Folder.File("other")), "old contents");
}

TEST_F(OutputGuardTest, AFileWithAnotherNameWhoseNameCannotBeTakenAwayIsRefused) {
  const std::string path = Folder.Write("out", "old contents");
  fs::create_hard_link(path, Folder.File("other"));
  System.Decide = FaultingSystem::Failing("DeleteFile", EACCES);
  EXPECT_EQ(Files.OpenForBinaryWrite(path), -1);
  EXPECT_EQ(Files.LastError().Code, EACCES);
  EXPECT_EQ(ReadFile(path), "old contents");
  // Somebody gives it another name as fast as it is taken away.
  System.Decide = [&](const FaultingSystem::Call& call, std::size_t) {
    if (call.Is("GetFileInformationByHandle") && !Exists(path)) ADD_FAILURE() << "there is no output";
    if (call.Is("CreateFile") && !Exists(path)) fs::create_hard_link(Folder.File("other"), path);
    return FaultingSystem::Fault{};
  };
  EXPECT_EQ(Files.OpenForBinaryWrite(path), -1);
  EXPECT_EQ(Files.LastError().Code, EMLINK);
  EXPECT_EQ(ReadFile(Folder.File("other")), "old contents");
}

TEST_F(OutputGuardTest, AnOutputIsCutUnderWhateverName) {
  const std::string path = Folder.File("out");
  const std::int16_t number = Files.OpenForBinaryWrite(path);
  EXPECT_TRUE(Files.WriteAt(number, "0123456789", 0));
  EXPECT_TRUE(Files.Flush(number));
  fs::rename(path, Folder.File("moved"));
  Folder.Write("out", "somebody else's");
  EXPECT_TRUE(Files.SetFileSize(number, 4));
  EXPECT_EQ(ReadFile(Folder.File("moved")), "0123");
  EXPECT_EQ(ReadFile(path), "somebody else's");
  const std::int16_t input = Files.OpenForBinaryRead(path);
  EXPECT_FALSE(Files.SetFileSize(input, 0));
  EXPECT_FALSE(Files.SetFileSize(std::int16_t{99}, 0));
  EXPECT_EQ(Files.LastError().Code, EBADF);
  System.Decide = FaultingSystem::Failing("SetEndOfFile", EIO);
  EXPECT_FALSE(Files.SetFileSize(number, 0));
  EXPECT_EQ(Files.LastError().Code, EIO);
}

TEST_F(OutputGuardTest, AnOutputIsGivenBackWhenItIsClosedOrAbandoned) {
  const std::string path = Folder.File("out");
  for (const bool abandoned : {true, false, true}) {
    const std::int16_t number = Files.OpenForBinaryWrite(path);
    ASSERT_GE(number, 1);
    EXPECT_EQ(Files.OpenForBinaryWrite(path), -1) << "it is being written";
    bool stillNamed = false;
    if (abandoned) {
      Files.Abandon(number, path, stillNamed);
    } else {
      EXPECT_TRUE(Files.Close(number));
    }
  }
}

TEST_F(OutputGuardTest, WhereFilesCannotBeLockedOutputsAreWrittenAllTheSame) {
  System.Decide = FaultingSystem::Failing("TryLockFile", ENOLCK);
  EXPECT_GE(Files.OpenForBinaryWrite(Folder.Write("out", "old")), 1);
  EXPECT_EQ(ReadFile(Folder.File("out")), "");
}

TEST_F(OutputGuardTest, AFileMadeByAnOpenThatThenFailsIsTakenBack) {
  System.Decide = FaultingSystem::Failing("GetFileInformationByHandle", EIO);
  EXPECT_EQ(Files.OpenForBinaryWrite(Folder.File("new")), -1);
  EXPECT_EQ(Files.LastError().Code, EIO);
  EXPECT_FALSE(Exists(Folder.File("new")));
  EXPECT_EQ(Files.OpenForBinaryWrite(Folder.Write("old", "text")), -1);
  EXPECT_EQ(ReadFile(Folder.File("old")), "text");
  System.Decide = [](const FaultingSystem::Call& call, std::size_t) {
    const bool fails = call.Is("GetFileInformationByHandle") || call.Is("GetLinkAttributes");
    return FaultingSystem::Fault{fails ? EIO : 0, 0};
  };
  EXPECT_EQ(Files.OpenForBinaryWrite(Folder.File("unknown")), -1);
  EXPECT_TRUE(Exists(Folder.File("unknown"))) << "what cannot be told apart stays";
}

TEST_F(OutputGuardTest, TellsWhetherAPathStillNamesTheOpenFile) {
  const std::string path = Folder.File("out");
  const std::int16_t number = Files.OpenForBinaryWrite(path);
  EXPECT_TRUE(Files.IsNamed(number, path));
  EXPECT_FALSE(Files.IsNamed(number, Folder.Write("other", "")));
  EXPECT_FALSE(Files.IsNamed(number + 1, path));
  EXPECT_FALSE(Files.IsNamed(number, Folder.File("missing")));
  EXPECT_EQ(Files.LastError().Code, ENOENT);
  fs::rename(path, Folder.File("moved"));
  fs::create_symlink(Folder.File("moved"), path);
  EXPECT_FALSE(Files.IsNamed(number, path)) << "a link is another file";
  EXPECT_TRUE(Files.IsNamed(number, Folder.File("moved")));
}

}  // namespace
}  // namespace folioweld
