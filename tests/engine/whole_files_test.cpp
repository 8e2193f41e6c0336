// The operations of FileModule on files that are not open.

#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <linux/fs.h>
#include <string>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tests/engine/file_fixture.h"

namespace folioweld {
namespace {

namespace fs = std::filesystem;
using testing::Exists;
using testing::FaultingSystem;
using testing::ReadFile;

class WholeFilesTest : public testing::FileFixture {
 protected:
  std::string WriteReadOnly(const std::string& name, const std::string& bytes) {
    const std::string path = Folder.Write(name, bytes);
    EXPECT_EQ(::chmod(path.c_str(), 0444), 0);
    return path;
  }

  [[nodiscard]] static unsigned ModeOf(const std::string& path) {
    struct stat status {};
    EXPECT_EQ(::lstat(path.c_str(), &status), 0);
    return status.st_mode & 07777U;
  }
};

using FileExistsTest = WholeFilesTest;
using DeleteFileTest = WholeFilesTest;
using TruncateFileTest = WholeFilesTest;
using SetFileSizeTest = WholeFilesTest;

TEST_F(FileExistsTest, IsTrueForAFileThatCanBeOpenedForReading) {
  EXPECT_TRUE(Files.FileExists(Folder.Write("file", "")));
  fs::create_symlink(Folder.File("file"), Folder.File("link"));
  EXPECT_TRUE(Files.FileExists(Folder.File("link")));
  EXPECT_EQ(CountOf("CloseHandle"), 2);
}

TEST_F(FileExistsTest, IsFalseForFoldersMissingFilesAndEveryFailure) {
  EXPECT_FALSE(Files.FileExists(Folder.Path()));
  EXPECT_FALSE(Files.FileExists(Folder.File("missing")));
  EXPECT_FALSE(Files.FileExists(""));
  fs::create_symlink(Folder.File("missing"), Folder.File("dangling"));
  EXPECT_FALSE(Files.FileExists(Folder.File("dangling")));
  const std::string path = Folder.Write("file", "");
  for (const char* call : {"CreateFile", "GetFileInformationByHandle"}) {
    System.Decide = FaultingSystem::Failing(call, EACCES);
    EXPECT_FALSE(Files.FileExists(path)) << call;
  }
}

TEST_F(FileExistsTest, DoesNotWaitForTheOtherEndOfAPipe) {
  const std::string pipe = Folder.File("pipe");
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
  EXPECT_TRUE(Files.FileExists(pipe));
}

TEST_F(DeleteFileTest, RemovesTheFile) {
  const std::string path = Folder.Write("file", "text");
  Files.DeleteFile(path);
  EXPECT_FALSE(Exists(path));
}

TEST_F(DeleteFileTest, AReadOnlyFileIsMadeWritableFirstAndThenRemoved) {
  const std::string path = WriteReadOnly("file", "text");
  Files.DeleteFile(path);
  EXPECT_FALSE(Exists(path));
  ASSERT_EQ(CountOf("SetFileAttributesNormal"), 1);
  EXPECT_EQ(System.Calls[1].Name, "SetFileAttributesNormal");
  EXPECT_EQ(System.Calls[2].Name, "DeleteFile");
}

TEST_F(DeleteFileTest, AFileThatCannotBeRemovedIsAtLeastEmptied) {
  const std::string path = WriteReadOnly("file", "text");
  System.Decide = FaultingSystem::Failing("DeleteFile", EACCES);
  Files.DeleteFile(path);
  EXPECT_EQ(ReadFile(path), "");
  EXPECT_EQ(Files.LastError().Code, EACCES);
}

TEST_F(DeleteFileTest, AMissingFileIsNoError) {
  Files.DeleteFile(Folder.File("missing"));
  EXPECT_EQ(Files.LastError().Code, 0);
}

TEST_F(DeleteFileTest, EveryErrorIsIgnored) {
  const std::string path = Folder.Write("file", "text");
  System.Decide = [](const FaultingSystem::Call&, std::size_t) { return FaultingSystem::Fault{EIO, 0}; };
  Files.DeleteFile(path);
  System.Decide = nullptr;
  EXPECT_EQ(ReadFile(path), "text");
  WriteReadOnly("file", "text");
  System.Decide = FaultingSystem::Failing("SetFileAttributesNormal", EPERM);
  Files.DeleteFile(path);
  EXPECT_FALSE(Exists(path));
}

TEST_F(DeleteFileTest, AnInterruptedRemovalIsTriedAgain) {
  const std::string path = Folder.Write("file", "text");
  System.Decide = [](const FaultingSystem::Call& call, std::size_t index) {
    return FaultingSystem::Fault{call.Is("DeleteFile") && index < 4 ? EINTR : 0, 0};
  };
  Files.DeleteFile(path);
  EXPECT_FALSE(Exists(path));
}

TEST_F(DeleteFileTest, RemovesALinkAndNotWhatItLeadsTo) {
  const std::string target = WriteReadOnly("target", "text");
  fs::create_symlink(target, Folder.File("link"));
  Files.DeleteFile(Folder.File("link"));
  EXPECT_FALSE(Exists(Folder.File("link")));
  EXPECT_EQ(ReadFile(target), "text");
  EXPECT_EQ(ModeOf(target), 0444U);
}

TEST_F(DeleteFileTest, ALinkThatCannotBeRemovedEmptiesNothing) {
  const std::string target = Folder.Write("target", "text");
  fs::create_symlink(target, Folder.File("link"));
  System.Decide = FaultingSystem::Failing("DeleteFile", EACCES);
  Files.DeleteFile(Folder.File("link"));
  EXPECT_EQ(ReadFile(target), "text");
}

TEST_F(DeleteFileTest, AnotherNameOfTheFileKeepsItsModeAndItsContents) {
  const std::string path = WriteReadOnly("file", "text");
  fs::create_hard_link(path, Folder.File("other"));
  System.Decide = FaultingSystem::Failing("DeleteFile", EACCES);
  Files.DeleteFile(path);
  EXPECT_EQ(ReadFile(Folder.File("other")), "text");
  System.Decide = nullptr;
  Files.DeleteFile(path);
  EXPECT_FALSE(Exists(path));
  EXPECT_EQ(ReadFile(Folder.File("other")), "text");
  EXPECT_EQ(ModeOf(Folder.File("other")), 0444U);
}

TEST_F(DeleteFileTest, AFolderStays) {
  const std::string path = Folder.MakeFolder("folder");
  Files.DeleteFile(path);
  EXPECT_TRUE(Exists(path));
}

TEST_F(DeleteFileTest, AFileThatTheSystemHoldsFastStaysWithoutAnError) {
  const std::string path = Folder.Write("file", "text");
  const int file = ::open(path.c_str(), O_RDONLY);
  const int fast = FS_IMMUTABLE_FL;
  if (::ioctl(file, FS_IOC_SETFLAGS, &fast) < 0) {
    ::close(file);
    GTEST_SKIP() << "the file system or the user cannot make a file immutable";
  }
  Files.DeleteFile(path);
  EXPECT_EQ(ReadFile(path), "text");
  EXPECT_FALSE(Files.TruncateFile(path));
  EXPECT_FALSE(Files.SetFileSize(path, 0));
  EXPECT_EQ(Files.OpenForBinaryWrite(path), -1);
  EXPECT_EQ(Files.LastError().Code, EPERM);
  EXPECT_EQ(ReadFile(path), "text");
  const int free = 0;
  EXPECT_EQ(::ioctl(file, FS_IOC_SETFLAGS, &free), 0);
  ::close(file);
}

TEST_F(TruncateFileTest, EmptiesAnExistingFile) {
  const std::string path = Folder.Write("file", "text");
  EXPECT_TRUE(Files.TruncateFile(path));
  EXPECT_EQ(ReadFile(path), "");
}

TEST_F(TruncateFileTest, CreatesNothingAndFollowsNoLink) {
  EXPECT_FALSE(Files.TruncateFile(Folder.File("missing")));
  EXPECT_FALSE(Exists(Folder.File("missing")));
  fs::create_symlink(Folder.Write("target", "text"), Folder.File("link"));
  EXPECT_FALSE(Files.TruncateFile(Folder.File("link")));
  EXPECT_EQ(ReadFile(Folder.File("target")), "text");
  EXPECT_FALSE(Files.TruncateFile(Folder.Path()));
}

TEST_F(TruncateFileTest, AFailedOpenOrCloseIsTold) {
  const std::string path = Folder.Write("file", "text");
  for (const char* call : {"CreateFile", "CloseHandle"}) {
    System.Decide = FaultingSystem::Failing(call, EIO);
    EXPECT_FALSE(Files.TruncateFile(path)) << call;
    EXPECT_EQ(Files.LastError().Code, EIO);
  }
}

TEST_F(SetFileSizeTest, CutsAFileAndKeepsWhatIsBefore) {
  const std::string path = Folder.Write("file", "0123456789");
  EXPECT_TRUE(Files.SetFileSize(path, 4));
  EXPECT_EQ(ReadFile(path), "0123");
  EXPECT_TRUE(Files.SetFileSize(path, 4));
  EXPECT_EQ(ReadFile(path), "0123");
  EXPECT_TRUE(Files.SetFileSize(path, 0));
  EXPECT_EQ(ReadFile(path), "");
}

TEST_F(SetFileSizeTest, ALongerFileIsFilledWithZeros) {
  const std::string path = Folder.Write("file", "01");
  EXPECT_TRUE(Files.SetFileSize(path, 4));
  EXPECT_EQ(ReadFile(path), std::string("01\0\0", 4));
}

TEST_F(SetFileSizeTest, CreatesNothingAndFollowsNoLink) {
  EXPECT_FALSE(Files.SetFileSize(Folder.File("missing"), 1));
  EXPECT_EQ(Files.LastError().Code, ENOENT);
  EXPECT_FALSE(Exists(Folder.File("missing")));
  fs::create_symlink(Folder.Write("target", "text"), Folder.File("link"));
  EXPECT_FALSE(Files.SetFileSize(Folder.File("link"), 1));
  EXPECT_EQ(ReadFile(Folder.File("target")), "text");
}

TEST_F(SetFileSizeTest, EveryFailureIsToldAndTheFileIsClosedInEveryCase) {
  const std::string path = Folder.Write("file", "text");
  EXPECT_FALSE(Files.SetFileSize(path, -1));
  EXPECT_EQ(Files.LastError().Code, EINVAL);
  EXPECT_EQ(CountOf("CloseHandle"), 1);
  for (const char* call : {"CreateFile", "SetEndOfFile", "CloseHandle"}) {
    System.Decide = FaultingSystem::Failing(call, EIO);
    EXPECT_FALSE(Files.SetFileSize(path, 4)) << call;
    EXPECT_EQ(Files.LastError().Code, EIO);
  }
  EXPECT_EQ(CountOf("CloseHandle"), 3);
}

TEST_F(SetFileSizeTest, AnInterruptedCutIsTriedAgain) {
  const std::string path = Folder.Write("file", "text");
  System.Decide = [](const FaultingSystem::Call& call, std::size_t index) {
    return FaultingSystem::Fault{call.Is("SetEndOfFile") && index < 4 ? EINTR : 0, 0};
  };
  EXPECT_TRUE(Files.SetFileSize(path, 2));
  EXPECT_EQ(ReadFile(path), "te");
}

}  // namespace
}  // namespace folioweld
