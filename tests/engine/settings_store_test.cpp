// The user's choices between runs.

#include "engine/settings_store.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>
#include <utility>
#include <vector>

#include "tests/engine/settings_fixture.h"

namespace folioweld {
namespace {

namespace fs = std::filesystem;
using testing::Exists;
using testing::FaultingSystem;
using testing::ReadFile;

class SettingsStoreTest : public testing::SettingsFixture {
 protected:
  [[nodiscard]] static unsigned ModeOf(const std::string& path) {
    struct stat status {};
    EXPECT_EQ(::stat(path.c_str(), &status), 0);
    return status.st_mode & 07777U;
  }

  [[nodiscard]] bool WasWritten() const {
    return std::any_of(System.Calls.begin(), System.Calls.end(), [](const FaultingSystem::Call& call) {
      return call.Name == "WriteFile" || call.Name == "MoveFile" || call.Name == "TryLockFile";
    });
  }
};

// The codes are those of the store's interface, hence the numbers.

TEST_F(SettingsStoreTest, AFirstStartReadsDefaultsAndLeavesAllFiveStored) {
  const std::vector<std::pair<std::string, std::string>> defaults = {{"MenuSort", "1"},
                                                                     {"MenuShowLogWindow", "1"},
                                                                     {"DisplayOutputAfterMerge", "1"},
                                                                     {"MergeCurDir", "/home/user/"},
                                                                     {"MergeTmpDir", "/tmp/"}};
  for (const auto& [name, value] : defaults) {
    std::string text = "old";
    EXPECT_EQ(Store.ReadSettingOrDefault(name, text, value), 0);
    EXPECT_EQ(text, value);
  }
  EXPECT_EQ(
      ReadFile(SettingsFile()),
      "[Settings]\nMenuSort=1\nMenuShowLogWindow=1\nDisplayOutputAfterMerge=1\nMergeCurDir=/home/user/\n"
      "MergeTmpDir=/tmp/\n");
  for (const auto& [name, value] : defaults) {
    std::string text;
    EXPECT_EQ(Store.ReadSettingOrDefault(name, text, "another"), 0);
    EXPECT_EQ(text, value);
  }
}

TEST_F(SettingsStoreTest, AWrittenTextIsReadBackByTheNextRun) {
  EXPECT_EQ(Store.WriteSetting("MergeCurDir", "/a b/"), 0);
  EXPECT_EQ(Store.WriteSetting("MergeCurDir", "/c/"), 0);
  SettingsStore next(System);
  EXPECT_EQ(next.ReadSetting("MergeCurDir"), "/c/");
  EXPECT_EQ(next.LastError(), kSettingsOk);
}

TEST_F(SettingsStoreTest, AnEmptyTextReadsAsEmptyAndNotAsTheDefault) {
  EXPECT_EQ(Store.WriteSetting("MergeTmpDir", ""), 0);
  std::string text = "old";
  EXPECT_EQ(Store.ReadSettingOrDefault("MergeTmpDir", text, "default"), 0);
  EXPECT_EQ(text, "");
  EXPECT_EQ(Store.ReadSetting("MergeTmpDir"), "");
  EXPECT_EQ(Store.LastError(), kSettingsOk);
}

TEST_F(SettingsStoreTest, AStoredNulEndsTheTextThatIsRead) {
  EXPECT_EQ(Store.WriteSetting("MergeTmpDir", std::string("ab\0cd", 5)), 0);
  EXPECT_EQ(Store.ReadSetting("MergeTmpDir"), "ab");
  EXPECT_EQ(Store.LastError(), kSettingsOk);
}

TEST_F(SettingsStoreTest, AnyTextIsSafe) {
  std::string text = " \n[Settings]\r\n\"quoted\"=\\x41;# \xE4\xFF\x01";
  for (int i = 1; i < 256; ++i) text += static_cast<char>(i);
  EXPECT_EQ(Store.WriteSetting("MergeCurDir", text), 0);
  EXPECT_EQ(Store.WriteSetting("MenuSort", "2"), 0);
  EXPECT_EQ(Store.ReadSetting("MergeCurDir"), text);
  EXPECT_EQ(Store.ReadSetting("MenuSort"), "2");
}

TEST_F(SettingsStoreTest, ReadingFromAStoreThatWasJustMadeFindsNoValue) {
  EXPECT_EQ(Store.ReadSetting("MenuSort"), "");
  EXPECT_EQ(Store.LastError(), 1387);
  EXPECT_EQ(ReadFile(SettingsFile()), "") << "made, and holds no values yet";
  EXPECT_EQ(Store.ReadSetting("MenuSort"), "");
  EXPECT_EQ(Store.LastError(), 1387);
}

TEST_F(SettingsStoreTest, UnknownLinesStay) {
  WriteSettingsFile("; mine\n[Settings]\nFuture=7\nMenuSort=1\n");
  EXPECT_EQ(Store.WriteSetting("MenuSort", "3"), 0);
  EXPECT_EQ(ReadFile(SettingsFile()), "; mine\n[Settings]\nFuture=7\nMenuSort=3\n");
}

TEST_F(SettingsStoreTest, OnlyTheOwnerCanReadWhatIsWritten) {
  WriteSettingsFile("[Settings]\n");
  fs::permissions(SettingsFile(), fs::perms{0644});
  EXPECT_EQ(Store.WriteSetting("MenuSort", "1"), 0);
  EXPECT_EQ(ModeOf(SettingsFile()), 0600U);
  fs::remove_all(Folder.File("folioweld"));
  EXPECT_EQ(Store.WriteSetting("MenuSort", "1"), 0);
  EXPECT_EQ(ModeOf(SettingsFile()), 0600U);
  EXPECT_EQ(ModeOf(Folder.File("folioweld")), 0700U);
}

TEST_F(SettingsStoreTest, WritingWhatIsStoredAlreadyTouchesNothing) {
  EXPECT_EQ(Store.WriteSetting("MenuSort", "1"), 0);
  System.Calls.clear();
  EXPECT_EQ(Store.WriteSetting("MenuSort", "1"), 0);
  std::string text;
  EXPECT_EQ(Store.ReadSettingOrDefault("MenuSort", text, "2"), 0);
  EXPECT_FALSE(WasWritten());
}

TEST_F(SettingsStoreTest, NothingButTheSettingsAndTheirLockStaysBehind) {
  EXPECT_EQ(Store.WriteSetting("MenuSort", "1"), 0);
  EXPECT_EQ(Store.WriteSetting("MenuSort", "2"), 0);
  std::vector<std::string> names;
  for (const auto& entry : fs::directory_iterator(Folder.File("folioweld"))) {
    names.push_back(entry.path().filename().string());
  }
  std::sort(names.begin(), names.end());
  EXPECT_EQ(names, (std::vector<std::string>{"settings.ini", "settings.ini.lock"}));
}

TEST_F(SettingsStoreTest, LivesInTheConfigurationFolderOrUnderTheHome) {
  System.Environment = {{"XDG_CONFIG_HOME", "/config"}, {"HOME", "/home/user"}};
  EXPECT_EQ(Store.FilePath(), "/config/folioweld/settings.ini");
  System.Environment = {{"XDG_CONFIG_HOME", "\x01"}, {"HOME", "/home/user"}};
  EXPECT_EQ(Store.FilePath(), "/home/user/.config/folioweld/settings.ini");
  System.Environment = {{"XDG_CONFIG_HOME", ""}, {"HOME", "/home/user"}};
  EXPECT_EQ(Store.FilePath(), "/home/user/.config/folioweld/settings.ini");
  System.Environment = {{"XDG_CONFIG_HOME", "relative"}, {"HOME", "/home/user"}};
  EXPECT_EQ(Store.FilePath(), "/home/user/.config/folioweld/settings.ini");
}

TEST_F(SettingsStoreTest, MakesTheFoldersOnTheWay) {
  System.Environment = {{"XDG_CONFIG_HOME", "\x01"}, {"HOME", Folder.File("new/home")}};
  EXPECT_EQ(Store.WriteSetting("MenuSort", "2"), 0);
  EXPECT_EQ(ReadFile(Folder.File("new/home/.config/folioweld/settings.ini")), "[Settings]\nMenuSort=2\n");
}

TEST_F(SettingsStoreTest, WithoutAHomeReadsAreDefaultsAndWritesFail) {
  for (const char* home : {"\x01", ""}) {
    System.Environment = {{"XDG_CONFIG_HOME", "\x01"}, {"HOME", home}};
    EXPECT_EQ(Store.FilePath(), "");
    EXPECT_EQ(Store.ReadSetting("MenuSort"), "");
    EXPECT_EQ(Store.LastError(), 1011);
    EXPECT_EQ(Store.WriteSetting("MenuSort", "1"), 1011);
    EXPECT_EQ(Store.CreateSettingsKey(), 3);
    std::string text;
    EXPECT_EQ(Store.ReadSettingOrDefault("MenuSort", text, "1"), 1011);
    EXPECT_EQ(text, "1");
  }
}

TEST_F(SettingsStoreTest, AFailedReadGivesTheDefaultAndWritesNothing) {
  EXPECT_EQ(Store.WriteSetting("MenuSort", "3"), 0);
  System.Calls.clear();
  System.Decide = FaultingSystem::Failing("ReadFile", EIO);
  std::string text;
  EXPECT_EQ(Store.ReadSettingOrDefault("MenuSort", text, "1"), 1012);
  EXPECT_EQ(text, "1");
  EXPECT_EQ(Store.LastError(), 1012);
  System.Decide = FaultingSystem::Failing("GetFileInformationByHandle", EIO);
  EXPECT_EQ(Store.ReadSettingOrDefault("MenuSort", text, "1"), 1012);
  EXPECT_FALSE(WasWritten());
  EXPECT_EQ(ReadFile(SettingsFile()), "[Settings]\nMenuSort=3\n");
}

TEST_F(SettingsStoreTest, AStoreThatCannotBeOpenedNorMadeIsAKeyFailure) {
  Folder.Write("folioweld", "a file where the folder should be");
  EXPECT_EQ(Store.ReadSetting("MenuSort"), "");
  EXPECT_EQ(Store.LastError(), 1011);
  EXPECT_EQ(Store.WriteSetting("MenuSort", "1"), 1011);
  EXPECT_EQ(Store.SettingsKey, -1);
}

TEST_F(SettingsStoreTest, WhatIsNoSettingsFileIsAnotherFailureAndIsNotReplaced) {
  Folder.MakeFolder("folioweld");
  ASSERT_EQ(::mkfifo(SettingsFile().c_str(), 0600), 0);
  std::string text;
  EXPECT_EQ(Store.ReadSettingOrDefault("MenuSort", text, "1"), 1015);
  EXPECT_EQ(text, "1");
  EXPECT_NE(Store.WriteSetting("MenuSort", "1"), 0);
  EXPECT_TRUE(fs::is_fifo(SettingsFile()));
  fs::remove(SettingsFile());
  Folder.MakeFolder("folioweld/settings.ini");
  EXPECT_EQ(Store.ReadSettingOrDefault("MenuSort", text, "1"), 1015);
  EXPECT_NE(Store.WriteSetting("MenuSort", "1"), 0);
}

TEST_F(SettingsStoreTest, AFileFarTooLongIsNotReadAndNotReplaced) {
  WriteSettingsFile("[Settings]\nMenuSort=3\n");
  fs::resize_file(SettingsFile(), 1024 * 1024 + 1);
  EXPECT_EQ(Store.ReadSetting("MenuSort"), "");
  EXPECT_EQ(Store.LastError(), 1015);
  EXPECT_NE(Store.WriteSetting("MenuSort", "1"), 0);
  EXPECT_EQ(fs::file_size(SettingsFile()), 1024U * 1024 + 1);
  fs::resize_file(SettingsFile(), 1024 * 1024);
  EXPECT_EQ(Store.ReadSetting("MenuSort"), "3");
}

TEST_F(SettingsStoreTest, ATextThatWouldMakeTheFileTooLongIsNotWritten) {
  EXPECT_EQ(Store.WriteSetting("MenuSort", "3"), 0);
  EXPECT_EQ(Store.WriteSetting("MergeCurDir", std::string(2 * 1024 * 1024, 'x')), EFBIG);
  EXPECT_EQ(Store.ReadSetting("MenuSort"), "3");
  EXPECT_EQ(Store.WriteSetting("MenuSort", "2"), 0);
}

TEST_F(SettingsStoreTest, ATemporaryNameThatIsTakenIsPassedOver) {
  Folder.MakeFolder("folioweld");
  long tries = 0;
  System.Decide = [&](const FaultingSystem::Call& call, std::size_t) {
    const bool temporary = call.Is("CreateFile") && call.Path.substr(call.Path.size() - 4) == ".tmp";
    return FaultingSystem::Fault{temporary && ++tries < 4 ? EEXIST : 0, 0};
  };
  EXPECT_EQ(Store.WriteSetting("MenuSort", "2"), 0);
  EXPECT_EQ(tries, 4);
  EXPECT_EQ(Store.ReadSetting("MenuSort"), "2");
  tries = -1000;
  EXPECT_EQ(Store.WriteSetting("MenuSort", "3"), EEXIST) << "not for ever";
}

TEST_F(SettingsStoreTest, AFileThatVanishesUnderTheLockIsAFailure) {
  EXPECT_EQ(Store.WriteSetting("MenuSort", "2"), 0);
  System.Decide = [&](const FaultingSystem::Call& call, std::size_t) {
    if (call.Is("TryLockFile")) fs::remove(SettingsFile());
    return FaultingSystem::Fault{};
  };
  EXPECT_EQ(Store.WriteSetting("MenuSort", "3"), 1011);
}

class SettingsKeyTest : public SettingsStoreTest {};

TEST_F(SettingsKeyTest, IsClosedAtFirstAndAfterEveryReadAndWrite) {
  EXPECT_EQ(Store.SettingsKey, -1);
  EXPECT_EQ(Store.WriteSetting("MenuSort", "1"), 0);
  EXPECT_EQ(Store.SettingsKey, -1);
  static_cast<void>(Store.ReadSetting("MenuSort"));
  EXPECT_EQ(Store.SettingsKey, -1);
}

TEST_F(SettingsKeyTest, OpensWhatExistsOnly) {
  EXPECT_FALSE(Store.OpenSettingsKey());
  EXPECT_EQ(Store.SettingsKey, -1);
  EXPECT_FALSE(Exists(SettingsFile()));
  WriteSettingsFile("");
  EXPECT_TRUE(Store.OpenSettingsKey());
  EXPECT_GE(Store.SettingsKey, 0);
}

TEST_F(SettingsKeyTest, CreatesWhatIsMissingOnly) {
  EXPECT_EQ(Store.CreateSettingsKey(), 1);
  EXPECT_GE(Store.SettingsKey, 0);
  EXPECT_EQ(Store.CreateSettingsKey(), 3);
  EXPECT_EQ(Store.SettingsKey, -1);
}

TEST_F(SettingsKeyTest, EnsuresByOpeningOrCreating) {
  EXPECT_EQ(Store.EnsureSettingsKey(), 1);
  EXPECT_GE(Store.SettingsKey, 0);
  EXPECT_EQ(Store.EnsureSettingsKey(), 2);
  EXPECT_GE(Store.SettingsKey, 0);
  System.Decide = FaultingSystem::Failing("CreateFile", EACCES);
  EXPECT_EQ(Store.EnsureSettingsKey(), 3);
  EXPECT_EQ(Store.SettingsKey, -1);
}

TEST_F(SettingsKeyTest, TakesAStoreThatSomebodyElseMadeInBetween) {
  System.Decide = [&](const FaultingSystem::Call& call, std::size_t) {
    if (call.Is("CreateDirectory")) WriteSettingsFile("[Settings]\nMenuSort=3\n");
    return FaultingSystem::Fault{};
  };
  EXPECT_EQ(Store.EnsureSettingsKey(), 2);
  EXPECT_EQ(Store.ReadSetting("MenuSort"), "3");
}

TEST_F(SettingsKeyTest, AnOpenKeyIsClosedBeforeAnotherIsOpenedAndAtTheEnd) {
  const auto closed = [&] {
    return std::count_if(System.Calls.begin(), System.Calls.end(),
                         [](const FaultingSystem::Call& call) { return call.Name == "CloseHandle"; });
  };
  WriteSettingsFile("");
  {
    SettingsStore store(System);
    EXPECT_TRUE(store.OpenSettingsKey());
    EXPECT_EQ(closed(), 0);
    EXPECT_TRUE(store.OpenSettingsKey());
    EXPECT_EQ(closed(), 1);
    EXPECT_EQ(store.EnsureSettingsKey(), 2);
    EXPECT_EQ(closed(), 2);
    store.CloseSettingsKey();
    store.CloseSettingsKey();
    EXPECT_EQ(closed(), 3);
    EXPECT_EQ(store.SettingsKey, -1);
    EXPECT_TRUE(store.OpenSettingsKey());
  }
  EXPECT_EQ(closed(), 4);
}

}  // namespace
}  // namespace folioweld
