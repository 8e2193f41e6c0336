// The real system's files, paths and folders.

#include <array>
#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <optional>
#include <set>
#include <string>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

#include "platform/posix_api.h"
#include "tests/support/temp_folder.h"

namespace folioweld {
namespace {

namespace fs = std::filesystem;
using testing::Exists;

class PosixFilesTest : public ::testing::Test {
 protected:
  /// Opens for the length of the test.
  WindowsAPI::Handle Open(const std::string& path, OpenMode mode) {
    const auto file = System.CreateFile(path, mode);
    EXPECT_TRUE(file.Ok()) << path << ": " << file.Error().Words();
    return file.Value();
  }

  void ExpectFailure(const std::string& path, OpenMode mode, int error) {
    const auto file = System.CreateFile(path, mode);
    EXPECT_FALSE(file.Ok()) << path;
    EXPECT_EQ(file.Error().Code, error) << path;
  }

  [[nodiscard]] static unsigned ModeOf(const std::string& path) {
    struct stat status {};
    EXPECT_EQ(::lstat(path.c_str(), &status), 0);
    return status.st_mode & 07777U;
  }

  std::string Read(WindowsAPI::Handle file, std::int64_t offset, std::size_t count) {
    std::string bytes(count, '#');
    const auto read = System.ReadFile(file, offset, bytes.data(), count);
    EXPECT_TRUE(read.Ok()) << read.Error().Words();
    bytes.resize(read.Value());
    return bytes;
  }

  testing::TempFolder Folder;
  PosixApi System;
};

TEST_F(PosixFilesTest, AFileInMemoryCanBeWrittenAndReadAndIsKeptFromOtherPrograms) {
  const auto file = System.CreateMemoryFile();
  ASSERT_TRUE(file.Ok()) << file.Error().Words();
  ASSERT_TRUE(System.WriteFile(file.Value(), 3, "text", 4).Ok());
  EXPECT_EQ(Read(file.Value(), 0, 10), std::string("\0\0\0text", 7));
  EXPECT_EQ(::fcntl(file.Value(), F_GETFD) & FD_CLOEXEC, FD_CLOEXEC);
  EXPECT_FALSE(System.CloseHandle(file.Value()));
}

TEST_F(PosixFilesTest, TheModesThatNeedAnExistingFileCreateNone) {
  for (const OpenMode mode :
       {OpenMode::ReadExisting, OpenMode::ReadWriteExisting, OpenMode::TruncateExisting}) {
    ExpectFailure(Folder.File("missing"), mode, ENOENT);
  }
  EXPECT_TRUE(Folder.Names().empty());
}

TEST_F(PosixFilesTest, OpeningToWriteKeepsTheContentsAndCreatesUnderTheUsersMask) {
  const mode_t mask = ::umask(0027);
  const auto kept = Open(Folder.Write("old", "text"), OpenMode::WriteKeep);
  const auto created = Open(Folder.File("new"), OpenMode::WriteKeep);
  ::umask(mask);
  EXPECT_EQ(testing::ReadFile(Folder.File("old")), "text");
  EXPECT_EQ(ModeOf(Folder.File("new")), 0640U);
  EXPECT_FALSE(System.CloseHandle(kept));
  EXPECT_FALSE(System.CloseHandle(created));
}

TEST_F(PosixFilesTest, OpeningToTruncateEmpties) {
  EXPECT_FALSE(System.CloseHandle(Open(Folder.Write("file", "text"), OpenMode::TruncateExisting)));
  EXPECT_EQ(testing::ReadFile(Folder.File("file")), "");
}

TEST_F(PosixFilesTest, APrivateFileIsItsOwnersAlone) {
  const mode_t mask = ::umask(0);
  const auto fresh = Open(Folder.File("new"), OpenMode::CreateNewPrivate);
  const auto lock = Open(Folder.File("lock"), OpenMode::ReadWriteCreatePrivate);
  const auto again = Open(Folder.File("lock"), OpenMode::ReadWriteCreatePrivate);
  ::umask(mask);
  EXPECT_EQ(ModeOf(Folder.File("new")), 0600U);
  EXPECT_EQ(ModeOf(Folder.File("lock")), 0600U);
  ExpectFailure(Folder.File("new"), OpenMode::CreateNewPrivate, EEXIST);
  for (const auto file : {fresh, lock, again}) EXPECT_FALSE(System.CloseHandle(file));
}

TEST_F(PosixFilesTest, ANewFileDoesNotTakeADanglingLinkForAName) {
  fs::create_symlink(Folder.File("missing"), Folder.File("link"));
  ExpectFailure(Folder.File("link"), OpenMode::CreateNewPrivate, EEXIST);
  EXPECT_FALSE(Exists(Folder.File("missing")));
}

TEST_F(PosixFilesTest, NothingIsWrittenThroughALink) {
  fs::create_symlink(Folder.Write("target", "text"), Folder.File("link"));
  for (const OpenMode mode : {OpenMode::WriteKeep, OpenMode::ReadWriteExisting, OpenMode::TruncateExisting,
                              OpenMode::ReadWriteCreatePrivate}) {
    ExpectFailure(Folder.File("link"), mode, ELOOP);
  }
  EXPECT_EQ(testing::ReadFile(Folder.File("target")), "text");
  EXPECT_FALSE(System.CloseHandle(Open(Folder.File("link"), OpenMode::ReadExisting)));
}

TEST_F(PosixFilesTest, NoOpenWaitsForTheOtherEndOfAPipe) {
  const std::string pipe = Folder.File("pipe");
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
  ExpectFailure(pipe, OpenMode::WriteKeep, ENXIO);
  ExpectFailure(pipe, OpenMode::TruncateExisting, ENXIO);
  const auto reader = Open(pipe, OpenMode::ReadExisting);
  EXPECT_EQ(System.GetFileInformationByHandle(reader).Value().Kind, FileKind::Other);
  char byte = 0;
  EXPECT_EQ(System.ReadFile(reader, 0, &byte, 1).Error().Code, ESPIPE);
  EXPECT_FALSE(System.CloseHandle(reader));
}

TEST_F(PosixFilesTest, OpenFilesAreNotHandedToOtherPrograms) {
  const std::string path = Folder.Write("file", "");
  for (const OpenMode mode : {OpenMode::ReadExisting, OpenMode::WriteKeep, OpenMode::ReadWriteExisting,
                              OpenMode::TruncateExisting, OpenMode::ReadWriteCreatePrivate}) {
    const auto file = Open(path, mode);
    EXPECT_EQ(::fcntl(file, F_GETFD) & FD_CLOEXEC, FD_CLOEXEC);
    EXPECT_FALSE(System.CloseHandle(file));
  }
}

TEST_F(PosixFilesTest, ReadsAndWritesAtPositions) {
  const auto file = Open(Folder.Write("file", "0123456789"), OpenMode::ReadWriteExisting);
  EXPECT_EQ(Read(file, 3, 4), "3456");
  EXPECT_EQ(Read(file, 8, 4), "89");
  EXPECT_EQ(Read(file, 10, 4), "");
  EXPECT_EQ(System.WriteFile(file, 2, "abc", 3).Value(), 3U);
  EXPECT_EQ(System.WriteFile(file, 12, "z", 1).Value(), 1U);
  EXPECT_EQ(Read(file, 0, 20), std::string("01abc56789\0\0z", 13));
  EXPECT_EQ(System.ReadFile(file, -1, nullptr, 0).Error().Code, EINVAL);
  EXPECT_FALSE(System.CloseHandle(file));
  EXPECT_EQ(System.ReadFile(file, 0, nullptr, 0).Error().Code, EBADF);
  EXPECT_EQ(System.WriteFile(file, 0, "x", 1).Error().Code, EBADF);
  EXPECT_EQ(System.CloseHandle(file).Code, EBADF);
}

TEST_F(PosixFilesTest, ReadsAndWritesBeyondFourGigabytes) {
  constexpr std::int64_t kFar = (std::int64_t{5} << 30U) + 3;
  const auto file = Open(Folder.Write("file", ""), OpenMode::ReadWriteExisting);
  EXPECT_EQ(System.WriteFile(file, kFar, "far", 3).Value(), 3U);
  EXPECT_EQ(Read(file, kFar, 10), "far");
  EXPECT_EQ(System.GetFileInformationByHandle(file).Value().Size, kFar + 3);
  EXPECT_FALSE(System.SetEndOfFile(file, kFar + 1));
  EXPECT_EQ(Read(file, kFar, 10), "f");
  EXPECT_FALSE(System.CloseHandle(file));
}

TEST_F(PosixFilesTest, AWriteBeyondTheUsersLimitIsAnErrorAndNotTheEndOfTheProgram) {
  const auto file = Open(Folder.File("file"), OpenMode::WriteKeep);
  rlimit before{};
  ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &before), 0);
  rlimit small = before;
  small.rlim_cur = 4;
  ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &small), 0);
  const auto partly = System.WriteFile(file, 0, "012345", 6);
  const auto beyond = System.WriteFile(file, 4, "45", 2);
  ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &before), 0);
  EXPECT_EQ(partly.Value(), 4U) << "a short write";
  EXPECT_EQ(beyond.Error().Code, EFBIG);
  EXPECT_FALSE(System.CloseHandle(file));
}

TEST_F(PosixFilesTest, CopiesFromFileToFileAtAnyOffset) {
  std::string bytes;
  while (bytes.size() < 20000) bytes += std::to_string(bytes.size()) + " ";
  const auto from = Open(Folder.Write("from", bytes), OpenMode::ReadExisting);
  const auto to = Open(Folder.Write("to", "<>"), OpenMode::ReadWriteExisting);
  EXPECT_EQ(System.CopyFileBytes(from, 4097, to, 1, 9001).Value(), 9001U);
  EXPECT_EQ(Read(to, 0, 20000), "<" + bytes.substr(4097, 9001));
  EXPECT_EQ(System.CopyFileBytes(from, 0, to, 0, 1).Value(), 1U);
  EXPECT_EQ(Read(to, 0, 2), bytes.substr(0, 1) + bytes.substr(4097, 1));
  EXPECT_FALSE(System.CloseHandle(from));
  EXPECT_FALSE(System.CloseHandle(to));
}

TEST_F(PosixFilesTest, ACopyThatCannotBeMadeIsAnErrorAndNoSignal) {
  const auto from = Open(Folder.Write("from", std::string(5000, 'f')), OpenMode::ReadExisting);
  const auto to = Open(Folder.File("to"), OpenMode::WriteKeep);
  EXPECT_EQ(System.CopyFileBytes(from, 0, to, 0, 5001).Error().Code, EIO) << "a byte more than there is";
  EXPECT_FALSE(System.CopyFileBytes(from, 0, to, 0, 9000).Ok()) << "a page more";
  EXPECT_FALSE(System.CopyFileBytes(from, 8192, to, 0, 1).Ok()) << "nothing but pages that are not there";
  EXPECT_EQ(System.CopyFileBytes(from, 0, from, 0, 1).Error().Code, EBADF) << "not open for writing";
  EXPECT_EQ(System.CopyFileBytes(to, 0, to, 0, 1).Error().Code, EACCES) << "not open for reading";
  std::array<int, 2> pipe{};
  ASSERT_EQ(::pipe(pipe.data()), 0);
  EXPECT_EQ(System.CopyFileBytes(pipe[0], 0, to, 0, 1).Error().Code, ENODEV) << "no pages";
  for (const int end : pipe) EXPECT_FALSE(System.CloseHandle(end));
  EXPECT_FALSE(System.CloseHandle(from));
  EXPECT_FALSE(System.CloseHandle(to));
}

TEST_F(PosixFilesTest, FlushesAndLocks) {
  const auto file = Open(Folder.File("file"), OpenMode::ReadWriteCreatePrivate);
  EXPECT_FALSE(System.FlushFileBuffers(file));
  EXPECT_FALSE(System.TryLockFile(file));
  const auto other = Open(Folder.File("file"), OpenMode::ReadWriteCreatePrivate);
  EXPECT_EQ(System.TryLockFile(other).Code, EWOULDBLOCK);
  EXPECT_FALSE(System.CloseHandle(file));
  EXPECT_FALSE(System.TryLockFile(other)) << "closing gives the lock back";
  EXPECT_FALSE(System.CloseHandle(other));
  EXPECT_EQ(System.FlushFileBuffers(other).Code, EBADF);
  EXPECT_EQ(System.TryLockFile(other).Code, EBADF);
  EXPECT_EQ(System.SetEndOfFile(other, 0).Code, EBADF);
  EXPECT_EQ(System.GetFileInformationByHandle(other).Error().Code, EBADF);
}

TEST_F(PosixFilesTest, TellsWhatAPathLeadsToAndWhatItIs) {
  const std::string file = Folder.Write("file", "12345");
  fs::create_hard_link(file, Folder.File("hard"));
  fs::create_symlink(file, Folder.File("link"));
  const FileInformation information = System.GetFileAttributes(file).Value();
  EXPECT_EQ(information.Kind, FileKind::Regular);
  EXPECT_EQ(information.Size, 5);
  EXPECT_EQ(information.Links, 2U);
  EXPECT_TRUE(information.OwnerCanWrite);
  EXPECT_EQ(System.GetFileAttributes(Folder.File("hard")).Value().Identity, information.Identity);
  EXPECT_EQ(System.GetFileAttributes(Folder.File("link")).Value().Identity, information.Identity);
  const FileInformation link = System.GetLinkAttributes(Folder.File("link")).Value();
  EXPECT_EQ(link.Kind, FileKind::Link);
  EXPECT_FALSE(link.Identity == information.Identity);
  EXPECT_EQ(System.GetLinkAttributes(Folder.Path()).Value().Kind, FileKind::Directory);
  EXPECT_EQ(System.GetFileAttributes("/dev/null").Value().Kind, FileKind::Other);
  EXPECT_EQ(System.GetFileAttributes(Folder.File("missing")).Error().Code, ENOENT);
  EXPECT_EQ(System.GetLinkAttributes(Folder.File("missing")).Error().Code, ENOENT);
}

TEST_F(PosixFilesTest, TellsTheTimeOfTheLastWriteToTheNanosecond) {
  const std::string file = Folder.Write("file", "");
  const timespec times[2] = {{1, 0}, {1234567890, 123456789}};
  ASSERT_EQ(::utimensat(AT_FDCWD, file.c_str(), times, 0), 0);
  const FileInformation information = System.GetFileAttributes(file).Value();
  EXPECT_EQ(information.WriteSeconds, 1234567890);
  EXPECT_EQ(information.WriteNanoseconds, 123456789);
}

TEST_F(PosixFilesTest, LetsTheOwnerWriteAgainAndLeavesTheRestOfTheMode) {
  const std::string file = Folder.Write("file", "");
  fs::create_symlink(file, Folder.File("link"));
  ASSERT_EQ(::chmod(file.c_str(), 0454), 0);
  EXPECT_FALSE(System.GetFileAttributes(file).Value().OwnerCanWrite);
  EXPECT_TRUE(System.SetFileAttributesNormal(Folder.File("link"))) << "never through a link";
  EXPECT_EQ(ModeOf(file), 0454U);
  EXPECT_FALSE(System.SetFileAttributesNormal(file));
  EXPECT_EQ(ModeOf(file), 0654U);
  EXPECT_EQ(System.SetFileAttributesNormal(Folder.File("missing")).Code, ENOENT);
}

TEST_F(PosixFilesTest, DeletesNamesAndNoFolders) {
  fs::create_symlink(Folder.Write("file", ""), Folder.File("link"));
  EXPECT_FALSE(System.DeleteFile(Folder.File("link")));
  EXPECT_EQ(Folder.Names(), (std::vector<std::string>{"file"}));
  EXPECT_EQ(System.DeleteFile(Folder.Path()).Code, EISDIR);
  EXPECT_EQ(System.DeleteFile(Folder.File("missing")).Code, ENOENT);
}

TEST_F(PosixFilesTest, MovesAndReplacesOnlyWhenTold) {
  const std::string from = Folder.Write("from", "new");
  const std::string to = Folder.Write("to", "old");
  EXPECT_EQ(System.MoveFile(from, to, WindowsAPI::Replace::No).Code, EEXIST);
  EXPECT_EQ(testing::ReadFile(to), "old");
  EXPECT_FALSE(System.MoveFile(from, to, WindowsAPI::Replace::Yes));
  EXPECT_EQ(testing::ReadFile(to), "new");
  EXPECT_FALSE(System.MoveFile(to, from, WindowsAPI::Replace::No));
  EXPECT_EQ(Folder.Names(), (std::vector<std::string>{"from"}));
  EXPECT_EQ(System.MoveFile(to, from, WindowsAPI::Replace::Yes).Code, ENOENT);
}

TEST_F(PosixFilesTest, MakesFoldersForTheirOwnerAlone) {
  const mode_t mask = ::umask(0);
  EXPECT_FALSE(System.CreateDirectory(Folder.File("folder")));
  ::umask(mask);
  EXPECT_EQ(ModeOf(Folder.File("folder")), 0700U);
  EXPECT_EQ(System.CreateDirectory(Folder.File("folder")).Code, EEXIST);
  EXPECT_EQ(System.CreateDirectory(Folder.File("no/such")).Code, ENOENT);
}

TEST_F(PosixFilesTest, ListsEveryNameOfAFolder) {
  const std::set<std::string> names = {".hidden", "no dot", "a.pdf", "\xFF\n"};
  for (const std::string& name : names) Folder.Write(name, "");
  Folder.MakeFolder("folder");
  const auto search = System.FindFirstFile(Folder.Path());
  ASSERT_TRUE(search.Ok());
  std::set<std::string> found;
  for (auto name = System.FindNextFile(search.Value()); name.Ok() && name.Value();
       name = System.FindNextFile(search.Value())) {
    found.insert(*name.Value());
  }
  EXPECT_EQ(System.FindNextFile(search.Value()).Value(), std::nullopt);
  System.FindClose(search.Value());
  std::set<std::string> expected = names;
  expected.insert({".", "..", "folder"});
  EXPECT_EQ(found, expected);
  EXPECT_EQ(System.FindFirstFile(Folder.File("missing")).Error().Code, ENOENT);
  EXPECT_EQ(System.FindFirstFile(Folder.File("a.pdf")).Error().Code, ENOTDIR);
}

TEST_F(PosixFilesTest, AListingThatFailsHalfwaySaysSo) {
  const auto search = System.FindFirstFile(Folder.Path());
  ASSERT_TRUE(search.Ok());
  // The listing's file is taken away from under it, as a disk would be.
  const int listing = ::dirfd(static_cast<DIR*>(search.Value()));
  const int other = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
  ASSERT_EQ(::dup2(other, listing), listing);
  EXPECT_EQ(System.FindNextFile(search.Value()).Error().Code, ENOTDIR);
  System.FindClose(search.Value());
  ::close(other);
}

TEST_F(PosixFilesTest, TheCurrentFolderCanBeChangedAndTold) {
  const std::string before = System.GetCurrentDirectory().Value();
  EXPECT_FALSE(System.SetCurrentDirectory(Folder.Path()));
  EXPECT_EQ(System.GetCurrentDirectory().Value(), Folder.Path());
  EXPECT_EQ(System.SetCurrentDirectory(Folder.File("missing")).Code, ENOENT);
  const std::string gone = Folder.MakeFolder("gone");
  EXPECT_FALSE(System.SetCurrentDirectory(gone));
  fs::remove(gone);
  EXPECT_EQ(System.GetCurrentDirectory().Error().Code, ENOENT);
  EXPECT_FALSE(System.SetCurrentDirectory(before));
  EXPECT_EQ(System.GetCurrentDirectory().Value(), before);
}

}  // namespace
}  // namespace folioweld
