// Another program holds the lock of the settings.

#include <cerrno>
#include <csignal>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "tests/engine/settings_fixture.h"

namespace folioweld {
namespace {

using testing::FaultingSystem;
using testing::ReadFile;

/// Time passes only where somebody waits.
class WaitingSystem : public FaultingSystem {
 public:
  WaitingSystem() {
    Decide = [this](const Call& call, std::size_t) {
      return Fault{call.Is("TryLockFile") && Held ? EWOULDBLOCK : 0, 0};
    };
  }
  std::int64_t MillisecondsNow() override { return Now; }
  void WaitForStopSignal(int milliseconds) override {
    Now += milliseconds;
    if (Now >= FreeFrom) Held = false;
    if (Now >= SignalFrom) Signal = SIGINT;
  }
  const volatile std::sig_atomic_t& StopSignal() override { return Signal; }

  bool Held = true;
  std::int64_t Now = 0;
  std::int64_t FreeFrom = 1'000'000;
  std::int64_t SignalFrom = 1'000'000;
  volatile std::sig_atomic_t Signal = 0;
};

class SettingsLockTest : public testing::SettingsFixture {
 protected:
  SettingsLockTest() {
    PointTo(waiting_);
    WriteSettingsFile("[Settings]\nMenuSort=1\n");
  }

  void ListenTo() {
    store_.TellTo([this](const std::string& line) { told_.push_back(line); });
  }

  WaitingSystem waiting_;
  SettingsStore store_{waiting_};
  std::vector<std::string> told_;
  const std::string held_ =
      "[Folioweld-WriteSetting]=>The settings are not stored: another program holds the lock \"" +
      SettingsFile() + ".lock\"";
};

TEST_F(SettingsLockTest, IsWaitedForAtMostTwoSeconds) {
  EXPECT_EQ(store_.WriteSetting("MenuSort", "2"), EWOULDBLOCK);
  EXPECT_EQ(waiting_.Now, 2000);
  EXPECT_EQ(store_.ReadSetting("MenuSort"), "1") << "settings are read all the same";
}

TEST_F(SettingsLockTest, ThatIsGivenBackInTimeIsTaken) {
  ListenTo();
  waiting_.FreeFrom = 1900;
  EXPECT_EQ(store_.WriteSetting("MenuSort", "2"), 0);
  EXPECT_EQ(store_.ReadSetting("MenuSort"), "2");
  EXPECT_TRUE(told_.empty());
}

TEST_F(SettingsLockTest, IsWaitedForAndToldOnce) {
  ListenTo();
  EXPECT_NE(store_.WriteSetting("MenuSort", "2"), 0);
  EXPECT_NE(store_.WriteSetting("MergeCurDir", "/"), 0);
  std::string text;
  EXPECT_NE(store_.ReadSettingOrDefault("MergeTmpDir", text, "/tmp/"), 0);
  EXPECT_EQ(text, "/tmp/");
  EXPECT_EQ(waiting_.Now, 2000);
  EXPECT_EQ(told_, std::vector<std::string>{held_});
}

TEST_F(SettingsLockTest, ThatWasHeldIsTakenWhenItIsFreeAgain) {
  ListenTo();
  EXPECT_NE(store_.WriteSetting("MenuSort", "2"), 0);
  waiting_.Held = false;
  EXPECT_EQ(store_.WriteSetting("MenuSort", "2"), 0);
  waiting_.Held = true;
  EXPECT_NE(store_.WriteSetting("MenuSort", "-1"), 0);
  EXPECT_EQ(waiting_.Now, 4000);
  EXPECT_EQ(told_, (std::vector<std::string>{held_, held_}));
}

TEST_F(SettingsLockTest, IsToldLaterWhereNobodyListenedAtFirst) {
  EXPECT_NE(store_.WriteSetting("MenuSort", "2"), 0);
  ListenTo();
  EXPECT_EQ(told_, std::vector<std::string>{held_});
  EXPECT_NE(store_.WriteSetting("MenuSort", "2"), 0);
  EXPECT_EQ(told_.size(), 1U);
}

TEST_F(SettingsLockTest, IsNotWaitedForAnyLongerOnceAStopSignalComes) {
  ListenTo();
  waiting_.SignalFrom = 100;
  EXPECT_EQ(store_.WriteSetting("MenuSort", "2"), EWOULDBLOCK);
  EXPECT_EQ(waiting_.Now, 100);
  EXPECT_TRUE(told_.empty());
}

TEST_F(SettingsLockTest, ThatCannotBeTakenAtAllIsNotWaitedFor) {
  waiting_.Decide = FaultingSystem::Failing("TryLockFile", ENOLCK);
  ListenTo();
  EXPECT_EQ(store_.WriteSetting("MenuSort", "2"), ENOLCK);
  EXPECT_EQ(waiting_.Now, 0);
  EXPECT_TRUE(told_.empty());
}

}  // namespace
}  // namespace folioweld
