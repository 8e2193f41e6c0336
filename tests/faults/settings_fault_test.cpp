// Every system call of reading and writing settings fails, in every way that it can.

#include <algorithm>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>

#include "engine/settings_store.h"
#include "engine/settings_text.h"
#include "tests/faults/fault_sweep.h"
#include "tests/faults/quiet_system.h"
#include "tests/support/merge_run.h"
#include "tests/support/temp_folder.h"

namespace folioweld {
namespace {

namespace fs = std::filesystem;
using testing::Exists;
using testing::FaultTrial;
using testing::ReadFile;

class SettingsFault : public ::testing::Test {
 protected:
  testing::TempFolder folder;
  const std::string path = folder.File("config/folioweld/settings.ini");

  void Prepare(testing::QuietSystem& system, FaultTrial* trial) const {
    system.Environment = {{"XDG_CONFIG_HOME", folder.File("config")}, {"HOME", folder.File("home")}};
    if (trial != nullptr) system.Decide = trial->Decide();
  }

  void CheckLeftovers(const FaultTrial& trial) const {
    if (!Exists(folder.File("config/folioweld"))) return;
    for (const auto& entry : fs::directory_iterator(folder.File("config/folioweld"))) {
      const std::string name = entry.path().filename().string();
      const bool known = name == "settings.ini" || name == "settings.ini.lock";
      ASSERT_TRUE(known || trial.NothingCanBeDeleted()) << name << " was left behind";
      ASSERT_EQ(fs::status(entry.path()).permissions() & fs::perms(0077), fs::perms::none) << name;
    }
  }
};

TEST_F(SettingsFault, AreTheOldOrTheNewOnesAndNeverAMixture) {
  const std::string old = "; by hand\n[Settings]\nMenuSort=1\nMergeTmpDir=/somewhere\\nelse/\nUnknown=kept\n";
  const std::string wanted =
      "; by hand\n[Settings]\nMenuSort=-2\nMergeTmpDir=/somewhere\\nelse/\nUnknown=kept\n";
  fs::create_directories(fs::path(path).parent_path());
  testing::SweepFaults({"CloseHandle", "CreateFile", "FlushFileBuffers", "GetFileInformationByHandle",
                        "MoveFile", "RandomNumber", "ReadFile", "TryLockFile", "WriteFile"},
                       [&](FaultTrial& trial) {
                         for (const auto& entry : fs::directory_iterator(fs::path(path).parent_path()))
                           fs::remove(entry);
                         folder.Write("config/folioweld/settings.ini", old);
                         ASSERT_EQ(::chmod(path.c_str(), 0600), 0);
                         const std::size_t handles = testing::OpenHandles();
                         int result = -1;
                         {
                           testing::QuietSystem system;
                           Prepare(system, &trial);
                           SettingsStore settings(system);
                           result = settings.WriteSetting("MenuSort", "-2");
                         }
                         ASSERT_EQ(testing::OpenHandles(), handles);
                         ASSERT_EQ(ReadFile(path), result == 0 ? wanted : old) << "result " << result;
                         if (trial.HasToPassUnnoticed()) {
                           ASSERT_EQ(result, 0);
                         }
                         CheckLeftovers(trial);

                         testing::QuietSystem system;
                         Prepare(system, nullptr);
                         SettingsStore settings(system);
                         ASSERT_EQ(settings.WriteSetting("MenuSort", "-2"), 0);
                         ASSERT_EQ(ReadFile(path), wanted);
                       });
}

TEST_F(SettingsFault, AFirstStartGivesTheDefaultsWhateverFails) {
  const std::pair<std::string, std::string> defaults[] = {
      {"MenuSort", "1"}, {"MenuShowLogWindow", "1"}, {"MergeCurDir", "/a folder/"}};
  testing::SweepFaults(
      {"CloseHandle", "CreateDirectory", "CreateFile", "FlushFileBuffers", "GetFileInformationByHandle",
       "MoveFile", "RandomNumber", "ReadFile", "TryLockFile", "WriteFile"},
      [&](FaultTrial& trial) {
        fs::remove_all(folder.File("config"));
        bool whole = true;
        {
          testing::QuietSystem system;
          Prepare(system, &trial);
          SettingsStore settings(system);
          for (const auto& [name, value] : defaults) {
            std::string text;
            whole = settings.ReadSettingOrDefault(name, text, value) == 0 && whole;
            ASSERT_EQ(text, value);
          }
        }
        if (trial.HasToPassUnnoticed()) {
          ASSERT_TRUE(whole);
        }
        CheckLeftovers(trial);
        const std::string file = Exists(path) ? ReadFile(path) : std::string();
        for (const auto& [name, value] : defaults) {
          const auto stored = FindSetting(file, name);
          ASSERT_TRUE(stored == value || (!stored && !whole)) << name;
        }
        testing::QuietSystem system;
        Prepare(system, nullptr);
        SettingsStore settings(system);
        for (const auto& [name, value] : defaults) {
          std::string text;
          ASSERT_EQ(settings.ReadSettingOrDefault(name, text, value), 0);
          ASSERT_EQ(FindSetting(ReadFile(path), name), value);
        }
      });
}

}  // namespace
}  // namespace folioweld
