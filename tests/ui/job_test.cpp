// A merge that was started with "Go".

#include <csignal>
#include <gmock/gmock.h>

#include "tests/ui/window_fixture.h"

namespace folioweld::testing {
namespace {

using ::testing::HasSubstr;

class JobTest : public WindowFixture {
 protected:
  void SetUp() override {
    Open();
    ChooseAll();
    desktop_.Starts = false;
  }

  [[nodiscard]] bool Running() { return Caption("cmdCancel") == "CANCEL (abort)"; }

  /// Calls the step once, at the first turn of the event loop in which the window looks as if it ran.
  void WhenRunning(std::function<void()> step) {
    AtEveryTurn([this, step] {
      if (seen_ || !Running()) return;
      seen_ = true;
      step();
    });
  }

  bool seen_ = false;
};

TEST_F(JobTest, JoinsTheInputsAndLeavesTheStatusLinesReadable) {
  Click("cmdOK");
  EXPECT_TRUE(Exists(folder_.File("joined.pdf")));
  EXPECT_THAT(Label("txtDoing0"), HasSubstr("Parsing file #1: " + folder_.File("first.pdf") + "\r\n"));
  EXPECT_THAT(Label("txtDoing1"), ::testing::EndsWith("   -> OK"));
  EXPECT_THAT(Label("txtDoing2"), ::testing::EndsWith("   -> OK\r\n"));
  EXPECT_EQ(EnabledButtons(), "cmdInput1 CmdClr1 cmdInput2 CmdClr2 PictToggle cmdOutput CmdClrOut cmdOK");
  EXPECT_EQ(DefaultButton(), "cmdOK");
  EXPECT_EQ(Caption("cmdCancel"), "Exit");
  EXPECT_EQ(Window().cursor().shape(), Qt::ArrowCursor);
  EXPECT_TRUE(Button("cmdOK")->hasFocus());
}

TEST_F(JobTest, AWarningIsCountedAfterTheOutcomeAndTheMergeIsASuccess) {
  WarnedDocument("second.pdf");
  Click("cmdOK");
  EXPECT_TRUE(Exists(folder_.File("joined.pdf")));
  EXPECT_THAT(Label("txtDoing2"), ::testing::EndsWith("   -> OK\r\n1 warning, see the log\r\n"));
  EXPECT_EQ(Merge().MergeStatus, 2);
  EXPECT_TRUE(dialogs_.Boxes.empty());
}

TEST_F(JobTest, AWarningIsShownItselfWhereTheLogIsOff) {
  WarnedDocument("second.pdf");
  Merge().LogEnabled = false;
  Click("cmdOK");
  EXPECT_THAT(Label("txtDoing2"),
              HasSubstr("   -> OK\r\n\"" + folder_.File("second.pdf") + "\", object 3, "));
}

TEST_F(JobTest, TheMarksComeBackWhenAHandlerChangesAName) {
  Click("cmdOK");
  Window().RefreshControls();
  EXPECT_THAT(Label("txtDoing0"), HasSubstr("Parsing"));
  Click("cmdInput1");
  EXPECT_THAT(Label("txtDoing0"), HasSubstr("Parsing")) << "a cancelled dialog changes no name";
  Click("CmdClr2");
  EXPECT_EQ(Marks(), "1<,,>");
}

TEST_F(JobTest, LooksBusyWhileItRuns) {
  WhenRunning([this] {
    EXPECT_EQ(EnabledButtons(), "");
    EXPECT_TRUE(Enabled("cmdCancel"));
    EXPECT_EQ(DefaultButton(), "cmdCancel");
    EXPECT_EQ(Window().cursor().shape(), Qt::WaitCursor);
    EXPECT_FALSE(Item("MenuPdfMergeDir")->isEnabled());
    EXPECT_TRUE(Item("MenuFilExit")->isEnabled());
    EXPECT_TRUE(Item("MnuLogHide")->isEnabled());
    Window().RefreshControls();
    EXPECT_EQ(EnabledButtons(), "");
    Window().cmdOK_Click();
  });
  Click("cmdOK");
  EXPECT_TRUE(seen_);
  EXPECT_TRUE(Item("MenuPdfMergeDir")->isEnabled());
}

TEST_F(JobTest, ShowsItsProgressWhileItRuns) {
  std::vector<std::string> seen;
  AtEveryTurn([&] { seen.push_back(Label("txtDoing0")); });
  Click("cmdOK");
  EXPECT_THAT(seen, ::testing::Contains(HasSubstr("Parsing file #1")));
}

TEST_F(JobTest, OptionsLogAndAboutWorkWhileItRuns) {
  WhenRunning([this] {
    Item("MenuSortByDate")->trigger();
    Item("MnuLogHide")->trigger();
    Item("MenuAboutFolioweld")->trigger();
  });
  Click("cmdOK");
  EXPECT_EQ(Window().Program().SortOrder, 2);
  EXPECT_FALSE(Window().TheLogWindow().isVisible());
  EXPECT_EQ(dialogs_.Boxes.size(), 1U);
  EXPECT_TRUE(Exists(folder_.File("joined.pdf")));
}

TEST_F(JobTest, CancelEndsIt) {
  WhenRunning([this] { Click("cmdCancel"); });
  Click("cmdOK");
  EXPECT_TRUE(seen_);
  EXPECT_THAT(Label("txtDoing0"), ::testing::EndsWith("   -> FAILED or cancelled"));
  EXPECT_FALSE(Exists(folder_.File("joined.pdf")));
  EXPECT_EQ(Merge().MergeStatus, -1);
  EXPECT_EQ(FileName(3), "");
  EXPECT_EQ(Caption("cmdCancel"), "Exit");
  EXPECT_FALSE(ended_);
  EXPECT_FALSE(Merge().AbortRequested);
}

TEST_F(JobTest, EnterCancelsItAndEscapeDoesNothing) {
  int escapes = 0;
  AtEveryTurn([&] {
    if (Running() && escapes++ == 0) QTest::keyClick(&Window(), Qt::Key_Escape);
    if (Running() && escapes > 1) QTest::keyClick(Window().focusWidget(), Qt::Key_Return);
  });
  Click("cmdOK");
  EXPECT_GT(escapes, 1);
  EXPECT_EQ(Merge().MergeStatus, -1);
  EXPECT_FALSE(ended_);
  EXPECT_TRUE(Window().isVisible());
}

TEST_F(JobTest, TheCloseBoxStopsItAndTheWindowStays) {
  WhenRunning([this] { EXPECT_FALSE(Window().close()); });
  Click("cmdOK");
  EXPECT_TRUE(seen_);
  EXPECT_EQ(Merge().MergeStatus, -1);
  EXPECT_TRUE(dialogs_.Boxes.empty());
  EXPECT_FALSE(ended_);
  EXPECT_TRUE(Window().isVisible());
}

TEST_F(JobTest, ExitInTheMenuAsksAndNoLetsItGoOn) {
  WhenRunning([this] { Item("MenuFilExit")->trigger(); });
  Click("cmdOK");
  ASSERT_EQ(dialogs_.Boxes.size(), 1U);
  EXPECT_TRUE(Exists(folder_.File("joined.pdf")));
  EXPECT_FALSE(ended_);
}

TEST_F(JobTest, ExitInTheMenuAsksAndYesCancelsCleansUpAndEnds) {
  dialogs_.BoxAnswers = {true};
  WhenRunning([this] {
    Item("MenuFilExit")->trigger();
    EXPECT_FALSE(ended_) << "the job cleans up first";
  });
  Click("cmdOK");
  EXPECT_TRUE(ended_);
  EXPECT_FALSE(Exists(folder_.File("joined.pdf")));
  EXPECT_FALSE(Window().isVisible());
}

TEST_F(JobTest, AStopSignalCancelsItCleansUpAndEnds) {
  WhenRunning([] { ASSERT_EQ(std::raise(SIGTERM), 0); });
  Click("cmdOK");
  ASSERT_TRUE(WaitFor([this] { return ended_.has_value(); }));
  EXPECT_EQ(*ended_, kNoOutput);
  EXPECT_FALSE(Exists(folder_.File("joined.pdf")));
  EXPECT_TRUE(dialogs_.Closed);
}

TEST_F(JobTest, AnOutputThatCannotBeOpenedIsToldWithTheRunningLookLifted) {
  const std::string name = FileName(3) = folder_.File("missing/out.pdf");
  // By the real clock the status lines of so short a job are not painted before the box opens.
  system_.FastClock = false;
  dialogs_.WhileOpen = [this] {
    EXPECT_FALSE(Running());
    EXPECT_EQ(Window().cursor().shape(), Qt::ArrowCursor);
    EXPECT_EQ(EnabledButtons(), "");
    EXPECT_THAT(Label("txtDoing0"), ::testing::EndsWith("   -> OK"));
    EXPECT_THAT(Label("txtDoing1"), ::testing::EndsWith("   -> OK"));
    EXPECT_THAT(Label("txtDoing2"), HasSubstr("Pass #3")) << "the state that the box speaks of";
  };
  Click("cmdOK");
  ASSERT_EQ(dialogs_.Boxes.size(), 1U);
  EXPECT_EQ(dialogs_.Boxes[0].Icon, BoxIcon::Exclamation);
  EXPECT_EQ(dialogs_.Boxes[0].Title, "Folioweld");
  EXPECT_EQ(dialogs_.Boxes[0].Text, "Could not open output file: " + name);
  EXPECT_EQ(FileName(3), "");
  EXPECT_EQ(DefaultButton(), "cmdCancel");
}

TEST_F(JobTest, AnOutputThatIsAnInputIsToldAndNothingIsTouched) {
  FileName(3) = FileName(1);
  Click("cmdOK");
  ASSERT_EQ(dialogs_.Boxes.size(), 1U);
  EXPECT_EQ(dialogs_.Boxes[0].Text,
            "The output file is also an input file!\r\nThis operation cannot be done.");
  EXPECT_EQ(EnabledButtons(), "cmdInput1 CmdClr1 cmdInput2 CmdClr2 PictToggle cmdOutput CmdClrOut cmdOK");
  EXPECT_EQ(Marks(), "1<,2<,>");
}

TEST_F(JobTest, ARefusedFirstInputIsDroppedAndItsStatusLineSaysWhy) {
  folder_.Write("first.pdf", "no longer a document");
  Click("cmdOK");
  EXPECT_EQ(FileName(1), "");
  EXPECT_EQ(Label("txtFileName0"), "");
  EXPECT_THAT(Label("txtDoing0"), HasSubstr("FAILED or cancelled: "));
  EXPECT_EQ(EnabledButtons(), "cmdInput1 CmdClrOut cmdOK");
  EXPECT_EQ(Caption("cmdCancel"), "Exit");
}

TEST_F(JobTest, ARefusedSecondInputIsLeftOutAndItsStatusLineSaysWhy) {
  folder_.Write("second.pdf", "no longer a document");
  Click("cmdOK");
  EXPECT_EQ(FileName(2), "");
  EXPECT_TRUE(Exists(folder_.File("joined.pdf")));
  EXPECT_THAT(Label("txtDoing1"), HasSubstr("FAILED or cancelled: "));
  EXPECT_TRUE(dialogs_.Boxes.empty());
}

TEST_F(JobTest, WithoutAnyInputNothingHappensAndTheMarksStay) {
  FileName(1).clear();
  FileName(2).clear();
  Window().RefreshControls();
  Click("cmdOK");
  EXPECT_EQ(EnabledButtons(), "cmdInput1 CmdClrOut cmdOK");
  EXPECT_EQ(Marks(), ",,>");
  EXPECT_FALSE(Exists(folder_.File("joined.pdf")));
}

}  // namespace
}  // namespace folioweld::testing
