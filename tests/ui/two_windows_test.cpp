// Two windows, each a process of its own, that change settings at the same time.

#include <QProcess>
#include <gtest/gtest.h>
#include <memory>

#include "tests/support/temp_folder.h"
#include "tests/ui/second_window.h"
#include "tests/ui/window_fixture.h"

namespace folioweld::testing {
namespace {

using WindowTest = WindowFixture;

/// The lock of the settings is waited for by the clock, for 2 seconds. Another window that a busy machine
/// stops while it holds the lock, or whose disk is slow, is no fault.
void WaitForTheLock(WindowSystem& system) {
  system.FastClock = false;
  system.Slowness = 60;
}

TEST_F(WindowTest, TwoThatChangeSettingsAtOnceLoseNoneAndMixNone) {
  WaitForTheLock(system_);
  Open();
  ASSERT_EQ(Stored("MenuSort"), "1");
  std::vector<std::unique_ptr<QProcess>> others;
  for (const char* part : {"sort", "display"}) {
    others.push_back(std::make_unique<QProcess>());
    others.back()->setProcessChannelMode(QProcess::ForwardedChannels);
    others.back()->start(QCoreApplication::applicationFilePath(),
                         {QString::fromLatin1(kAsSecondWindow), QString::fromLatin1(part),
                          QString::fromStdString(folder_.File("config"))});
  }
  // This window changes a third setting meanwhile.
  int rounds = 0;
  const auto running = [&] {
    return std::any_of(others.begin(), others.end(),
                       [](const auto& other) { return other->state() != QProcess::NotRunning; });
  };
  EXPECT_TRUE(WaitFor([&] {
    Item(++rounds % 2 == 0 ? "MnuLogShow" : "MnuLogHide")->trigger();
    EXPECT_EQ(Stored("MenuShowLogWindow"), rounds % 2 == 0 ? "1" : "0");
    return !running();
  }));
  for (const auto& other : others) {
    EXPECT_EQ(other->exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(other->exitCode(), 0) << "it saw a change of its own lost";
  }
  EXPECT_EQ(Stored("MenuSort"), "-2");
  EXPECT_EQ(Stored("DisplayOutputAfterMerge"), "0");
  EXPECT_EQ(Stored("MenuShowLogWindow"), rounds % 2 == 0 ? "1" : "0");
  EXPECT_GT(rounds, 1);
  const std::vector<std::string> left = [this] {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder_.File("config/folioweld"))) {
      names.push_back(entry.path().filename().string());
    }
    std::sort(names.begin(), names.end());
    return names;
  }();
  EXPECT_EQ(left, (std::vector<std::string>{"settings.ini", "settings.ini.lock"}));
}

}  // namespace

int RunAsSecondWindow(const std::string& part, const std::string& config) {
  WindowSystem system;
  WaitForTheLock(system);
  system.Environment = {{"XDG_CONFIG_HOME", config}};
  AnsweringDialogs dialogs;
  FakeDesktop desktop(system);
  Folioweld window(system, dialogs, desktop, {});
  window.EndProgram = [](int) {};
  window.Start();
  if (!QTest::qWaitFor([&] { return window.WasActivated(); }, kPatienceMillis)) return 2;
  const auto choose = [&](const char* item) {
    window.findChild<QAction*>(QString::fromLatin1(item))->trigger();
  };
  const auto stored = [&](const char* setting, const char* value) {
    return SettingsStore(system).ReadSetting(setting) == value;
  };
  const bool sort = part == "sort";
  for (int i = 0; i < 100; ++i) {
    choose(sort ? "MenuSortByDate" : "MenuOptViewYes");
    if (!stored(sort ? "MenuSort" : "DisplayOutputAfterMerge", sort ? "2" : "1")) return 1;
    choose(sort ? "MenuSortByDateRev" : "MenuOptViewNo");
    if (!stored(sort ? "MenuSort" : "DisplayOutputAfterMerge", sort ? "-2" : "0")) return 1;
    QCoreApplication::processEvents();
  }
  return 0;
}

}  // namespace folioweld::testing
