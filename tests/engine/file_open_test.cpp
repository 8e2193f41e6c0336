// Open files of FileModule: opening, closing, giving up, writing, copying.

#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <functional>
#include <gtest/gtest.h>
#include <string>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include "tests/engine/file_fixture.h"

namespace folioweld {
namespace {

namespace fs = std::filesystem;
using testing::Exists;
using testing::FaultingSystem;
using testing::ReadFile;

class OpenFileTest : public testing::FileFixture {
 protected:
  std::int16_t OpenOutput(const std::string& path) {
    const std::int16_t number = Files.OpenForBinaryWrite(path);
    EXPECT_GE(number, 1) << Files.LastError().Words();
    return number;
  }

  void ExpectRefusedForReading(const std::string& path, int error) {
    EXPECT_EQ(Files.OpenForBinaryRead(path), -1);
    EXPECT_EQ(Files.LastError().Code, error);
  }

  void ExpectRefusedForWriting(const std::string& path, int error) {
    EXPECT_EQ(Files.OpenForBinaryWrite(path), -1);
    EXPECT_EQ(Files.LastError().Code, error);
  }
};

using OpenForReadingTest = OpenFileTest;
using OpenForWritingTest = OpenFileTest;
using CloseTest = OpenFileTest;
using AbandonTest = OpenFileTest;
using WriteAtTest = OpenFileTest;
using CopyBlockTest = OpenFileTest;

TEST_F(OpenForReadingTest, RemembersTheLength) {
  const std::int16_t number = OpenWith("12345");
  EXPECT_EQ(number, 1);
  EXPECT_EQ(Files.FileLength(number), 5);
  Folder.Write("in", "123456789");
  EXPECT_EQ(Files.FileLength(number), 5);
}

TEST_F(OpenForReadingTest, FileNumbersCountFromOneAndAreUsedAgain) {
  Folder.Write("b", "bb");
  const std::int16_t first = OpenWith("a");
  const std::int16_t second = Files.OpenForBinaryRead(Folder.File("b"));
  EXPECT_EQ(first, 1);
  EXPECT_EQ(second, 2);
  EXPECT_TRUE(Files.Close(first));
  EXPECT_EQ(Files.FileLength(first), kNoLength);
  EXPECT_EQ(Files.OpenForBinaryRead(Folder.File("b")), 1);
  EXPECT_EQ(Files.FileLength(1), 2);
}

TEST_F(OpenForReadingTest, FollowsALink) {
  fs::create_symlink(Folder.Write("target", "123"), Folder.File("link"));
  EXPECT_EQ(Files.FileLength(Files.OpenForBinaryRead(Folder.File("link"))), 3);
}

TEST_F(OpenForReadingTest, RefusesWhatIsMissing) {
  ExpectRefusedForReading(Folder.File("missing"), ENOENT);
  fs::create_symlink(Folder.File("missing"), Folder.File("dangling"));
  ExpectRefusedForReading(Folder.File("dangling"), ENOENT);
  ExpectRefusedForReading("", ENOENT);
}

TEST_F(OpenForReadingTest, RefusesAFolder) {
  ExpectRefusedForReading(Folder.Path(), EISDIR);
}

TEST_F(OpenForReadingTest, RefusesAPipeWithoutWaitingForItsOtherEnd) {
  const std::string pipe = Folder.File("pipe");
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
  ExpectRefusedForReading(pipe, EINVAL);
}

TEST_F(OpenForReadingTest, RefusesADevice) {
  ExpectRefusedForReading("/dev/zero", EINVAL);
}

TEST_F(OpenForReadingTest, RefusesASocket) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  Folder.File("socket").copy(address.sun_path, sizeof address.sun_path - 1);
  const int listener = ::socket(AF_UNIX, SOCK_STREAM, 0);
  ASSERT_EQ(::bind(listener, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
  ExpectRefusedForReading(Folder.File("socket"), ENXIO);
  ::close(listener);
}

TEST_F(OpenForReadingTest, AnErrorOfTheSystemIsKeptInItsOwnWordsAndNothingStaysOpen) {
  const std::string path = Folder.Write("in", "x");
  System.Decide = FaultingSystem::Failing("CreateFile", EACCES);
  ExpectRefusedForReading(path, EACCES);
  EXPECT_EQ(Files.LastError().Words(), "Permission denied");
  System.Decide = FaultingSystem::Failing("GetFileInformationByHandle", EIO);
  ExpectRefusedForReading(path, EIO);
  EXPECT_EQ(CountOf("CloseHandle"), 1);
}

TEST_F(OpenForWritingTest, CreatesAMissingFileAndEmptiesAnExistingOne) {
  EXPECT_TRUE(Files.Close(OpenOutput(Folder.File("new"))));
  EXPECT_EQ(ReadFile(Folder.File("new")), "");
  const std::string path = Folder.Write("old", "contents");
  EXPECT_TRUE(Files.Close(OpenOutput(path)));
  EXPECT_EQ(ReadFile(path), "");
}

TEST_F(OpenForWritingTest, RefusesAnOpenInputUnderWhateverName) {
  const std::string path = Folder.Write("in", "contents");
  fs::create_hard_link(path, Folder.File("hard"));
  fs::create_symlink(Folder.Path(), Folder.File("folder"));
  const std::int16_t input = Files.OpenForBinaryRead(path);
  ASSERT_GE(input, 1);
  ExpectRefusedForWriting(path, EBUSY);
  ExpectRefusedForWriting(Folder.File("hard"), EBUSY);
  ExpectRefusedForWriting(
      Folder.File("folder") + "/../" + fs::path(Folder.Path()).filename().string() + "/in", EBUSY);
  ExpectRefusedForWriting(Folder.Path() + "//./in", EBUSY);
  EXPECT_EQ(ReadFile(path), "contents");
  ASSERT_TRUE(Files.Close(input));
  EXPECT_GE(OpenOutput(path), 1);
}

TEST_F(OpenForWritingTest, NeverWritesThroughALink) {
  fs::create_symlink(Folder.Write("target", "contents"), Folder.File("link"));
  ExpectRefusedForWriting(Folder.File("link"), ELOOP);
  EXPECT_EQ(ReadFile(Folder.File("target")), "contents");
  fs::create_symlink(Folder.File("missing"), Folder.File("dangling"));
  ExpectRefusedForWriting(Folder.File("dangling"), ELOOP);
  EXPECT_FALSE(Exists(Folder.File("missing")));
}

TEST_F(OpenForWritingTest, RefusesPipesFoldersAndDevices) {
  const std::string pipe = Folder.File("pipe");
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
  ExpectRefusedForWriting(pipe, ENXIO);
  const int reader = ::open(pipe.c_str(), O_RDONLY | O_NONBLOCK);
  ASSERT_GE(reader, 0);
  ExpectRefusedForWriting(pipe, EINVAL);
  ::close(reader);
  ExpectRefusedForWriting(Folder.Path(), EISDIR);
  ExpectRefusedForWriting("/dev/null", EINVAL);
}

TEST_F(OpenForWritingTest, AnExistingFileStaysAsItWasWhenTheOpenFails) {
  const std::string path = Folder.Write("out", "contents");
  for (const char* call : {"CreateFile", "GetFileInformationByHandle", "SetEndOfFile"}) {
    System.Decide = FaultingSystem::Failing(call, EIO);
    ExpectRefusedForWriting(path, EIO);
    EXPECT_EQ(ReadFile(path), "contents") << call;
  }
  System.Decide = nullptr;
  ExpectRefusedForWriting(Folder.File("no/such/folder"), ENOENT);
}

TEST_F(CloseTest, ANumberThatWasNeverOpenedIsNoErrorBelowOne) {
  EXPECT_TRUE(Files.Close(-1));
  EXPECT_TRUE(Files.Close(0));
  EXPECT_FALSE(Files.Close(1));
  EXPECT_FALSE(Files.Close(32767));
}

TEST_F(CloseTest, WritesWhatIsGathered) {
  const std::string path = Folder.File("out");
  const std::int16_t number = OpenOutput(path);
  ASSERT_TRUE(Files.WriteAt(number, "gathered", 0));
  EXPECT_EQ(ReadFile(path), "");
  EXPECT_TRUE(Files.Close(number));
  EXPECT_EQ(ReadFile(path), "gathered");
  EXPECT_FALSE(Files.Close(number)) << "the number is free";
}

TEST_F(CloseTest, AFailedWriteOrCloseIsToldAndTheNumberIsFreeAllTheSame) {
  for (const char* call : {"WriteFile", "CloseHandle"}) {
    const std::int16_t number = OpenOutput(Folder.File("out"));
    ASSERT_TRUE(Files.WriteAt(number, "text", 0));
    System.Decide = FaultingSystem::Failing(call, ENOSPC);
    EXPECT_FALSE(Files.Close(number)) << call;
    EXPECT_EQ(Files.LastError().Code, ENOSPC);
    System.Decide = nullptr;
    EXPECT_FALSE(Files.WriteAt(number, "text", 0));
  }
  EXPECT_EQ(CountOf("CloseHandle"), 2) << "a failed write still closes";
}

TEST_F(CloseTest, TheEndOfTheModuleClosesEveryFile) {
  {
    FileModule files(System);
    const std::int16_t output = files.OpenForBinaryWrite(Folder.File("out"));
    ASSERT_GE(files.OpenForBinaryRead(Folder.Write("in", "x")), 1);
    ASSERT_TRUE(files.WriteAt(output, "text", 0));
  }
  EXPECT_EQ(CountOf("CloseHandle"), 2);
  EXPECT_EQ(ReadFile(Folder.File("out")), "text");
}

TEST_F(AbandonTest, EmptiesWhatWasWrittenAndForgetsTheRest) {
  const std::string path = Folder.File("out");
  const std::int16_t number = OpenOutput(path);
  ASSERT_TRUE(Files.WriteAt(number, "written", 0));
  ASSERT_TRUE(Files.Flush(number));
  ASSERT_TRUE(Files.WriteAt(number, "gathered", 7));
  bool stillNamed = false;
  Files.Abandon(number, path, stillNamed);
  EXPECT_TRUE(stillNamed);
  EXPECT_EQ(ReadFile(path), "");
  EXPECT_FALSE(Files.WriteAt(number, "more", 0));
  EXPECT_FALSE(Files.Close(number));
}

TEST_F(AbandonTest, TellsWhenAnotherFileTookThePath) {
  const std::string path = Folder.File("out");
  for (const bool replaced : {true, false}) {
    const std::int16_t number = OpenOutput(path);
    fs::rename(path, Folder.File("moved"));
    if (replaced) Folder.Write("out", "somebody else's");
    bool stillNamed = true;
    Files.Abandon(number, path, stillNamed);
    EXPECT_FALSE(stillNamed);
    EXPECT_EQ(ReadFile(Folder.File("moved")), "");
    if (replaced) {
      EXPECT_EQ(ReadFile(path), "somebody else's");
      fs::remove(path);
    }
  }
}

TEST_F(AbandonTest, ALinkThatTookThePathIsAnotherFile) {
  const std::string path = Folder.File("out");
  const std::int16_t number = OpenOutput(path);
  fs::rename(path, Folder.File("moved"));
  fs::create_symlink(Folder.File("moved"), path);
  bool stillNamed = true;
  Files.Abandon(number, path, stillNamed);
  EXPECT_FALSE(stillNamed);
}

TEST_F(AbandonTest, ANumberThatIsNotOpenNamesNothing) {
  bool stillNamed = true;
  Files.Abandon(-1, Folder.Write("out", "text"), stillNamed);
  EXPECT_FALSE(stillNamed);
  EXPECT_EQ(ReadFile(Folder.File("out")), "text");
}

TEST_F(OpenFileTest, AnInputIsChangedWhenItWasWrittenAndItsDateSetBack) {
  const auto date = fs::last_write_time(Folder.Write("in", "12345"));
  const std::int16_t number = Files.OpenForBinaryRead(Folder.File("in"));
  EXPECT_TRUE(Files.InputIsUnchanged(number));
  // The clock of the file system ticks every few milliseconds.
  while (Files.InputIsUnchanged(number)) {
    Folder.Write("in", "12346");
    fs::last_write_time(Folder.File("in"), date);
  }
  EXPECT_EQ(fs::last_write_time(Folder.File("in")), date);
}

/// Tells of open files what the test wants.
class TellingSystem : public FaultingSystem {
 public:
  SystemResult<FileInformation> GetFileInformationByHandle(Handle file) override {
    auto information = FaultingSystem::GetFileInformationByHandle(file);
    if (Change) Change(information.Value());
    return information;
  }
  std::function<void(FileInformation&)> Change;
};

TEST_F(OpenFileTest, EverythingThatIsKnownOfAnInputCounts) {
  TellingSystem system;
  FileModule files(system);
  const std::int16_t number = files.OpenForBinaryRead(Folder.Write("in", "12345"));
  const std::vector<std::function<void(FileInformation&)>> changes = {
      [](FileInformation& now) { ++now.Identity.Device; },
      [](FileInformation& now) { ++now.Identity.File; },
      [](FileInformation& now) { ++now.Size; },
      [](FileInformation& now) { ++now.WriteSeconds; },
      [](FileInformation& now) { --now.WriteNanoseconds; },
      [](FileInformation& now) { ++now.ChangeSeconds; },
      [](FileInformation& now) { ++now.ChangeNanoseconds; }};
  for (std::size_t i = 0; i < changes.size(); ++i) {
    system.Change = changes[i];
    EXPECT_FALSE(files.InputIsUnchanged(number)) << i;
    system.Change = nullptr;
    EXPECT_TRUE(files.InputIsUnchanged(number)) << i;
  }
}

TEST_F(OpenFileTest, AnInputThatCannotBeAskedAboutCountsAsChanged) {
  const std::int16_t number = OpenWith("12345");
  System.Decide = FaultingSystem::Failing("GetFileInformationByHandle", EIO);
  EXPECT_FALSE(Files.InputIsUnchanged(number));
  EXPECT_EQ(Files.LastError().Code, EIO);
  EXPECT_FALSE(Files.InputIsUnchanged(99));
}

TEST_F(WriteAtTest, WritesAtOffsetsInAnyOrder) {
  const std::string path = Folder.File("out");
  const std::int16_t number = OpenOutput(path);
  EXPECT_TRUE(Files.WriteAt(number, "abc", 0));
  EXPECT_TRUE(Files.WriteAt(number, "def", 3));
  EXPECT_TRUE(Files.WriteAt(number, "XY", 1));
  EXPECT_TRUE(Files.WriteAt(number, std::string("\0\xFF", 2), 8));
  EXPECT_TRUE(Files.WriteAt(number, "", 20));
  EXPECT_TRUE(Files.Flush(number));
  EXPECT_EQ(ReadFile(path), std::string("aXYdef\0\0\0\xFF", 10));
}

TEST_F(WriteAtTest, NeedsAnOutputAndAnOffset) {
  const std::int16_t input = OpenWith("12345");
  EXPECT_FALSE(Files.WriteAt(input, "x", 0));
  EXPECT_EQ(Files.LastError().Code, EBADF);
  EXPECT_FALSE(Files.WriteAt(-1, "x", 0));
  EXPECT_FALSE(Files.WriteAt(99, "x", 0));
  EXPECT_FALSE(Files.WriteAt(OpenOutput(Folder.File("out")), "x", -1));
  EXPECT_FALSE(Files.Flush(input));
  EXPECT_FALSE(Files.Flush(-1));
  EXPECT_EQ(ReadFile(Folder.File("in")), "12345");
}

TEST_F(WriteAtTest, AFailedWriteShowsWithTheSystemsWordsAtTheLatestByFlush) {
  const std::int16_t number = OpenOutput(Folder.File("out"));
  System.Decide = FaultingSystem::Failing("WriteFile", ENOSPC);
  EXPECT_TRUE(Files.WriteAt(number, "text", 0));
  EXPECT_FALSE(Files.Flush(number));
  EXPECT_EQ(Files.LastError().Words(), "No space left on device");
  EXPECT_FALSE(Files.WriteAt(number, "text", 100)) << "the bytes gathered before cannot be written";
}

TEST_F(WriteAtTest, ManySmallWritesAreGathered) {
  const std::string path = Folder.File("out");
  const std::int16_t number = OpenOutput(path);
  std::string expected;
  for (int i = 0; i < 50000; ++i) {
    const std::string line = std::to_string(i) + "\r\n";
    ASSERT_TRUE(Files.WriteAt(number, line, static_cast<std::int32_t>(expected.size())));
    expected += line;
  }
  EXPECT_TRUE(Files.Close(number));
  EXPECT_EQ(ReadFile(path), expected);
  EXPECT_LT(CountOf("WriteFile"), 5);
}

TEST_F(CopyBlockTest, CopiesBlocksBetweenWrites) {
  const std::int16_t input = OpenWith("0123456789");
  const std::string path = Folder.File("out");
  const std::int16_t number = OpenOutput(path);
  EXPECT_TRUE(Files.WriteAt(number, "<", 0));
  EXPECT_TRUE(Files.CopyBlock(input, 2, number, 1, 3));
  EXPECT_TRUE(Files.CopyBlock(input, 5, number, 4, 2));
  EXPECT_TRUE(Files.CopyBlock(input, 0, number, 6, 1));
  EXPECT_TRUE(Files.WriteAt(number, ">", 7));
  EXPECT_TRUE(Files.CopyBlock(input, 9, number, 8, 1)) << "the input's last byte";
  EXPECT_TRUE(Files.Close(number));
  EXPECT_EQ(ReadFile(path), "<234560>9");
}

TEST_F(CopyBlockTest, NeedsAnInputAnOutputAndARangeInsideTheInput) {
  const std::int16_t input = OpenWith("0123456789");
  const std::int16_t number = OpenOutput(Folder.File("out"));
  EXPECT_FALSE(Files.CopyBlock(number, 0, number, 0, 1));
  EXPECT_FALSE(Files.CopyBlock(input, 0, input, 0, 1));
  EXPECT_FALSE(Files.CopyBlock(-1, 0, number, 0, 1));
  EXPECT_FALSE(Files.CopyBlock(input, 0, 99, 0, 1));
  EXPECT_EQ(Files.LastError().Code, EBADF);
  EXPECT_FALSE(Files.CopyBlock(input, -1, number, 0, 1));
  EXPECT_FALSE(Files.CopyBlock(input, 0, number, -1, 1));
  EXPECT_FALSE(Files.CopyBlock(input, 0, number, 0, 0));
  EXPECT_EQ(Files.LastError().Code, EINVAL);
  EXPECT_FALSE(Files.CopyBlock(input, 8, number, 0, 3));
  EXPECT_FALSE(Files.CopyBlock(input, 2147483647, number, 0, 2147483647));
  EXPECT_EQ(Files.LastError().Code, EIO);
  EXPECT_TRUE(Files.Close(number));
  EXPECT_EQ(ReadFile(Folder.File("out")), "");
}

TEST_F(CopyBlockTest, AnInputThatBecameShorterIsAFailedRead) {
  const std::int16_t input = OpenWith(std::string(200000, 'x'));
  const std::int16_t number = OpenOutput(Folder.File("out"));
  ASSERT_TRUE(Files.CopyBlock(input, 0, number, 0, 200000));
  fs::resize_file(Folder.File("in"), 100000);
  EXPECT_FALSE(Files.Flush(number));
  EXPECT_EQ(Files.LastError().Code, EIO);
}

TEST_F(CopyBlockTest, AFailedCopyShowsAtALaterCall) {
  const std::int16_t input = OpenWith("0123456789");
  const std::int16_t number = OpenOutput(Folder.File("out"));
  ASSERT_TRUE(Files.CopyBlock(input, 0, number, 0, 10));
  System.Decide = FaultingSystem::Failing("ReadFile", EIO);
  EXPECT_FALSE(Files.CopyBlock(input, 0, number, 10, 1));
  EXPECT_EQ(Files.LastError().Code, EIO);
}

}  // namespace
}  // namespace folioweld
