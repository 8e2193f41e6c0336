// The program that the desktop associates with documents, found and started for real.

#include "ui/desktop_viewer.h"

#include <QTest>
#include <filesystem>
#include <gtest/gtest.h>

#include "platform/posix_api.h"
#include "tests/support/temp_folder.h"

namespace folioweld::testing {
namespace {

namespace fs = std::filesystem;

/// A desktop whose reader is a program that notes what it was given. The desktop's library looks at its
/// folders once in a process, so that all tests share them.
class DesktopViewerTest : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    home_ = std::make_unique<TempFolder>();
    for (const char* name : {"applications", "config"}) home_->MakeFolder(name);
    home_->Write("applications/reader.desktop", "[Desktop Entry]\nType=Application\nName=Reader\nExec=\"" +
                                                    Program() + "\" %f\nMimeType=application/pdf;\n");
    home_->Write("applications/wrapped.desktop",
                 "[Desktop Entry]\nType=Application\nName=Wrapped\nExec=env A=1 B= \"" + Program() +
                     "\" %f\nMimeType=image/png;\n");
    home_->Write("config/mimeapps.list",
                 "[Default Applications]\napplication/pdf=reader.desktop\nimage/png=wrapped.desktop\n");
    qputenv("XDG_DATA_HOME", home_->Path().c_str());
    qputenv("XDG_CONFIG_HOME", home_->File("config").c_str());
  }
  static void TearDownTestSuite() { home_.reset(); }

  void SetUp() override { MakeProgram(); }

  static std::string Program() { return home_->File("a reader"); }
  static std::string Told() { return home_->File("told"); }

  static void MakeProgram() {
    home_->Write("a reader", "#!/bin/sh\nprintf '%s\\n%s\\n' \"$#\" \"$1\" > '" + Told() + ".new'\nmv '" +
                                 Told() + ".new' '" + Told() + "'\n");
    fs::permissions(Program(), fs::perms::owner_all);
    fs::remove(Told());
  }

  bool WaitForEnd(ViewerProcess process) {
    return QTest::qWaitFor(
        [&] {
          const auto running = system_.PollProcess(process);
          return running.Ok() && !running.Value();
        },
        120'000);
  }

  static std::unique_ptr<TempFolder> home_;
  PosixApi system_;
  DesktopViewer desktop_{system_};
};

std::unique_ptr<TempFolder> DesktopViewerTest::home_;

TEST_F(DesktopViewerTest, GivesNamesOfAnyBytesToTheReaderAsOneArgument) {
  ASSERT_EQ(desktop_.FindPdfReader("pdf"), Program());
  for (const std::string& name :
       {std::string("a plain.pdf"), std::string("-o $(touch x) `y` \"q\" 'a' %f %% ; & | > z.pdf"),
        std::string("line\nends\r.pdf"), std::string("\xFF\xFE no UTF-8 #?%41.pdf")}) {
    fs::remove(Told());
    ViewerProcess process = 0;
    ASSERT_TRUE(desktop_.LaunchProcess(home_->Write(name, "x"), process)) << name;
    ASSERT_TRUE(WaitForEnd(process)) << name;
    EXPECT_EQ(ReadFile(Told()), "1\n" + home_->File(name) + "\n");
    fs::remove(home_->File(name));
  }
  EXPECT_FALSE(Exists("x") || Exists("z.pdf"));
}

TEST_F(DesktopViewerTest, NamesTheProgramAndNotTheEnvThatStartsIt) {
  EXPECT_EQ(desktop_.FindPdfReader("png"), Program());
}

TEST_F(DesktopViewerTest, AReaderThatHasGoneSinceItWasFoundIsNobodyToWaitFor) {
  ASSERT_EQ(desktop_.FindPdfReader("pdf"), Program());
  fs::remove(Program());
  ViewerProcess process = 4711;
  // The desktop's library may start a helper first, which then ends instead of becoming the reader.
  const bool started = desktop_.LaunchProcess(home_->Write("a.pdf", "x"), process);
  EXPECT_EQ(process > 0, started);
  EXPECT_TRUE(!started || WaitForEnd(process));
  EXPECT_FALSE(Exists(Told()));
  MakeProgram();
  EXPECT_TRUE(desktop_.LaunchProcess(home_->File("a.pdf"), process)) << "the same once it is there again";
  EXPECT_TRUE(WaitForEnd(process));
  EXPECT_TRUE(Exists(Told()));
}

TEST_F(DesktopViewerTest, WithoutAReaderNothingIsFoundOrStarted) {
  EXPECT_EQ(desktop_.FindPdfReader("no such extension"), "");
  ViewerProcess process = 4711;
  EXPECT_FALSE(desktop_.LaunchProcess(home_->Write("a.pdf", "x"), process));
  EXPECT_EQ(process, 0);
}

}  // namespace
}  // namespace folioweld::testing
