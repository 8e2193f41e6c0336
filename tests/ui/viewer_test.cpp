// The finished output in the associated program.

#include "tests/ui/window_fixture.h"

namespace folioweld::testing {
namespace {

using WindowTest = WindowFixture;

class ViewerLaunchTest : public WindowFixture {
 protected:
  void SetUp() override {
    Open();
    ChooseAll();
  }

  [[nodiscard]] bool Watched() { return Caption("cmdCancel") == "Close display window"; }

  void WhenWatched(std::function<void()> step) {
    AtEveryTurn([this, step] {
      if (seen_ || !Watched()) return;
      seen_ = true;
      step();
    });
  }

  bool seen_ = false;
};

TEST_F(ViewerLaunchTest, TheWindowWaitsWithItsButtonsLockedUntilTheViewerEnds) {
  WhenWatched([this] {
    EXPECT_EQ(EnabledButtons(), "");
    EXPECT_EQ(DefaultButton(), "cmdCancel");
    EXPECT_TRUE(Button("cmdCancel")->hasFocus());
    EXPECT_EQ(Window().cursor().shape(), Qt::WaitCursor);
    EXPECT_FALSE(Item("MenuPdfMergeDir")->isEnabled());
    EXPECT_TRUE(Window().Program().ExternalBusy);
    EXPECT_FALSE(Merge().JobRunning);
    system_.ViewerRuns = false;
  });
  Click("cmdOK");
  EXPECT_TRUE(seen_);
  EXPECT_EQ(desktop_.Launched, std::vector{folder_.File("joined.pdf")});
  EXPECT_EQ(EnabledButtons(), "cmdInput1 CmdClr1 cmdInput2 CmdClr2 PictToggle cmdOutput CmdClrOut cmdOK");
  EXPECT_EQ(Caption("cmdCancel"), "Exit");
  EXPECT_EQ(DefaultButton(), "cmdOK");
  EXPECT_EQ(Window().cursor().shape(), Qt::ArrowCursor);
  EXPECT_FALSE(Window().Program().ExternalBusy);
  EXPECT_TRUE(desktop_.Asked.empty());
}

TEST_F(ViewerLaunchTest, CloseDisplayWindowAsksItsWindowsAndDoesNotWait) {
  WhenWatched([this] { Click("cmdCancel"); });
  Click("cmdOK");
  EXPECT_EQ(desktop_.Asked, std::vector{WindowSystem::kViewer});
  EXPECT_TRUE(system_.Terminated.empty());
  EXPECT_TRUE(system_.ViewerRuns) << "it survives, unobserved";
  EXPECT_EQ(Caption("cmdCancel"), "Exit");
  EXPECT_FALSE(Merge().AbortRequested);
  EXPECT_FALSE(ended_);
}

TEST_F(ViewerLaunchTest, AViewerWithoutWindowsToAskIsAskedToEnd) {
  desktop_.HasWindows = false;
  WhenWatched([this] { Click("cmdCancel"); });
  Click("cmdOK");
  EXPECT_EQ(system_.Terminated, std::vector{WindowSystem::kViewer});
}

TEST_F(ViewerLaunchTest, AViewerThatSurvivedIsTakenLeaveOfWhenItEnds) {
  WhenWatched([this] { Click("cmdCancel"); });
  Click("cmdOK");
  system_.ViewerRuns = false;
  const int polls = system_.Polls;
  EXPECT_TRUE(WaitFor([&] { return system_.Polls > polls; }));
  const int afterwards = system_.Polls;
  QTest::qWait(0);
  EXPECT_EQ(system_.Polls, afterwards);
}

TEST_F(ViewerLaunchTest, AViewerThatHandsOverAndEndsIsNotWaitedFor) {
  desktop_.EndsAtOnce = true;
  Click("cmdOK");
  EXPECT_EQ(desktop_.Launched.size(), 1U);
  EXPECT_EQ(Caption("cmdCancel"), "Exit");
  EXPECT_TRUE(desktop_.Asked.empty());
}

TEST_F(ViewerLaunchTest, AFailedStartIsIgnored) {
  desktop_.Starts = false;
  Click("cmdOK");
  EXPECT_EQ(desktop_.Launched.size(), 1U);
  EXPECT_TRUE(dialogs_.Boxes.empty());
  EXPECT_EQ(Caption("cmdCancel"), "Exit");
  EXPECT_EQ(DefaultButton(), "cmdOK");
}

TEST_F(ViewerLaunchTest, NothingIsStartedWhenTheUserChoseNotTo) {
  Item("MenuOptViewNo")->trigger();
  Click("cmdOK");
  EXPECT_TRUE(desktop_.Launched.empty());
}

TEST_F(ViewerLaunchTest, NothingIsStartedInSilentMode) {
  Merge().SilentMode = true;
  Click("cmdOK");
  EXPECT_TRUE(desktop_.Launched.empty());
}

TEST_F(ViewerLaunchTest, NothingIsStartedAfterAFailedMerge) {
  FileName(3) = folder_.File("missing/out.pdf");
  Click("cmdOK");
  EXPECT_TRUE(desktop_.Launched.empty());
}

TEST_F(ViewerLaunchTest, TheCloseBoxAsksAndYesLeavesTheViewerAlone) {
  dialogs_.BoxAnswers = {true};
  WhenWatched([this] { Window().close(); });
  Click("cmdOK");
  EXPECT_TRUE(ended_);
  EXPECT_TRUE(desktop_.Asked.empty());
  EXPECT_TRUE(system_.Terminated.empty());
}

TEST_F(ViewerLaunchTest, TheCloseBoxAsksAndNoGoesOnWatching) {
  WhenWatched([this] {
    EXPECT_FALSE(Window().close());
    EXPECT_TRUE(Watched());
    system_.ViewerRuns = false;
  });
  Click("cmdOK");
  EXPECT_EQ(dialogs_.Boxes.size(), 1U);
  EXPECT_FALSE(ended_);
  EXPECT_TRUE(desktop_.Asked.empty());
}

TEST_F(ViewerLaunchTest, APressBegunOnCloseDisplayWindowDoesNotCountOnExit) {
  WhenWatched([this] {
    QTest::mousePress(Button("cmdCancel"), Qt::LeftButton);
    system_.ViewerRuns = false;
  });
  Click("cmdOK");
  QTest::mouseRelease(Button("cmdCancel"), Qt::LeftButton);
  EXPECT_FALSE(ended_);
}

class ServiceLaunchTest : public ViewerLaunchTest {
 protected:
  void SetUp() override {
    ViewerLaunchTest::SetUp();
    desktop_.IsService = true;
  }

  void ExpectIdle() {
    EXPECT_EQ(desktop_.AskedFor, std::vector{folder_.File("joined.pdf")});
    EXPECT_EQ(Caption("cmdCancel"), "Exit");
    EXPECT_EQ(DefaultButton(), "cmdOK");
    EXPECT_FALSE(Merge().AbortRequested);
    EXPECT_FALSE(Window().Program().ExternalBusy);
    EXPECT_FALSE(ended_);
  }
};

TEST_F(ServiceLaunchTest, TheCommandIsStartedWhereTheServiceDoesNotAnswer) {
  WhenWatched([this] { EXPECT_TRUE(desktop_.Launched.empty()) << "it has some seconds to answer"; });
  AtEveryTurn([this] {
    if (!desktop_.Launched.empty()) system_.ViewerRuns = false;
  });
  Click("cmdOK");
  EXPECT_TRUE(seen_);
  EXPECT_EQ(desktop_.Launched, desktop_.AskedFor);
  ExpectIdle();
}

TEST_F(ServiceLaunchTest, TheCommandIsStartedAtOnceWhereTheServiceRefuses) {
  desktop_.ServiceSays = ViewerDesktop::Answer::Refused;
  desktop_.EndsAtOnce = true;
  Click("cmdOK");
  EXPECT_EQ(desktop_.Launched, desktop_.AskedFor);
  ExpectIdle();
}

TEST_F(ServiceLaunchTest, CancelIsHeardBeforeTheServiceAnswers) {
  WhenWatched([this] { Click("cmdCancel"); });
  Click("cmdOK");
  EXPECT_TRUE(seen_);
  EXPECT_TRUE(desktop_.Launched.empty());
  EXPECT_TRUE(system_.Terminated.empty());
  ExpectIdle();
}

TEST_F(ServiceLaunchTest, TheWindowOfTheServiceIsWaitedFor) {
  desktop_.ServiceSays = ViewerDesktop::Answer::Given;
  desktop_.ServiceWindow = true;
  int turns = 0;
  AtEveryTurn([this, &turns] {
    // Longer than a service has until its window is there.
    if (Watched() && ++turns == 30) desktop_.ServiceWindow = false;
  });
  Click("cmdOK");
  EXPECT_GE(turns, 30);
  EXPECT_TRUE(desktop_.Launched.empty());
  EXPECT_EQ(desktop_.ServiceWindowsClosed, 0);
  ExpectIdle();
}

TEST_F(ServiceLaunchTest, CloseDisplayWindowAsksTheWindowsOfTheServiceAndEndsNoProcess) {
  desktop_.ServiceSays = ViewerDesktop::Answer::Given;
  desktop_.ServiceWindow = true;
  WhenWatched([this] { Click("cmdCancel"); });
  Click("cmdOK");
  EXPECT_EQ(desktop_.ServiceWindowsClosed, 1);
  EXPECT_TRUE(system_.Terminated.empty());
  EXPECT_TRUE(desktop_.Asked.empty());
  ExpectIdle();
}

TEST_F(ServiceLaunchTest, AServiceThatOpensNoWindowIsNotWaitedFor) {
  desktop_.ServiceSays = ViewerDesktop::Answer::Given;
  Click("cmdOK");
  EXPECT_TRUE(desktop_.Launched.empty());
  ExpectIdle();
}

TEST_F(WindowTest, TheReaderIsLookedUpOnceAtLoad) {
  Open();
  EXPECT_EQ(desktop_.Extensions, std::vector<std::string>{"pdf"});
  EXPECT_EQ(Window().ReaderPath, "/usr/bin/some reader");
  EXPECT_TRUE(Window().ReaderAvailable);
  EXPECT_TRUE(Item("MenuOptViewOutput")->isEnabled());
}

TEST_F(WindowTest, WithoutAReaderTheDisplayMenuIsGreyedAndNoViewerStartsWhateverIsStored) {
  desktop_.Reader.clear();
  Open();
  EXPECT_FALSE(Item("MenuOptViewOutput")->isEnabled());
  EXPECT_FALSE(Merge().ShowOutputAfterMerge);
  EXPECT_EQ(Stored("DisplayOutputAfterMerge"), "1");
  EXPECT_TRUE(Item("MenuOptViewYes")->isChecked());
  ChooseAll();
  Click("cmdOK");
  EXPECT_TRUE(desktop_.Launched.empty());
}

}  // namespace
}  // namespace folioweld::testing
