// Presses that were meant for "CANCEL (abort)" or "Close display window" and arrive when the button says
// "Exit".

#include <QElapsedTimer>
#include <QLineEdit>

#include "tests/support/child_program.h"
#include "tests/ui/window_fixture.h"

namespace folioweld::testing {
namespace {

class ExitGuardTest : public WindowFixture {
 protected:
  void SetUp() override {
    // However long a busy machine takes from one press to the next: it is the next one.
    QApplication::setDoubleClickInterval(kPatienceMillis);
    Open();
    ChooseAll();
    desktop_.Starts = false;
  }
  void TearDown() override { QApplication::setDoubleClickInterval(doubleClick_); }

  /// Calls the step once, when the button has the caption.
  void WhenItSays(const char* caption, std::function<void()> step) {
    AtEveryTurn([this, caption, step] {
      if (seen_ || Caption("cmdCancel") != caption) return;
      seen_ = true;
      step();
    });
  }
  void WhenRunning(std::function<void()> step) { WhenItSays("CANCEL (abort)", std::move(step)); }
  /// Waits until a press counts again, and presses.
  void PressLater() {
    WaitUntilAPressCounts();
    Click("cmdCancel");
  }

  /// Clicks as if it were done at that time of the screen's clock.
  void ClickAt(quint64 time) {
    const QPointF middle = Button("cmdCancel")->rect().center();
    for (const QEvent::Type type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
      QMouseEvent event(type, middle, Button("cmdCancel")->mapToGlobal(middle), Qt::LeftButton,
                        type == QEvent::MouseButtonPress ? Qt::LeftButton : Qt::NoButton, Qt::NoModifier);
      event.setTimestamp(time);
      QApplication::sendEvent(Button("cmdCancel"), &event);
    }
  }
  void WaitUntilAPressCounts() {
    QElapsedTimer quiet;
    quiet.start();
    ASSERT_TRUE(WaitFor([&] { return quiet.hasExpired(2 * QApplication::doubleClickInterval()); }));
  }

  /// Cancels a job and clicks again and again, well beyond the time in which a press does not count. False
  /// when a click may have come later than that after the one before.
  bool ClickOnAndOn() {
    constexpr int kInterval = 300;
    QApplication::setDoubleClickInterval(kInterval);
    Open();
    ChooseAll();
    seen_ = false;
    ended_.reset();
    WhenRunning([this] {
      last_.start();
      Click("cmdCancel");
    });
    Click("cmdOK");
    EXPECT_TRUE(seen_);
    QElapsedTimer all;
    all.start();
    while (!all.hasExpired(3 * kInterval)) {
      QElapsedTimer begun;
      begun.start();
      Click("cmdCancel");
      if (last_.hasExpired(kInterval)) return false;
      EXPECT_FALSE(ended_);
      last_ = begun;
      QTest::qWait(5);
    }
    return true;
  }

  const int doubleClick_ = QApplication::doubleClickInterval();
  bool seen_ = false;
  QElapsedTimer last_;  ///< since the last press was about to be made
};

TEST_F(ExitGuardTest, AThirdClickThatFollowsACancelDoesNotEndTheProgram) {
  WhenRunning([this] { Click("cmdCancel"); });
  Click("cmdOK");
  ASSERT_EQ(Caption("cmdCancel"), "Exit");
  Click("cmdCancel");
  Click("cmdCancel");
  EXPECT_FALSE(ended_);
}

TEST_F(ExitGuardTest, ASecondEnterThatFollowsACancelDoesNotEndTheProgram) {
  WhenRunning([this] { QTest::keyClick(Window().focusWidget(), Qt::Key_Return); });
  Click("cmdOK");
  ASSERT_EQ(DefaultButton(), "cmdCancel");
  QTest::keyClick(Window().focusWidget(), Qt::Key_Return);
  EXPECT_FALSE(ended_);
}

TEST_F(ExitGuardTest, AClickThatFollowsTheCloseOfAViewerDoesNotEndTheProgram) {
  desktop_.Starts = true;
  WhenItSays("Close display window", [this] { Click("cmdCancel"); });
  Click("cmdOK");
  ASSERT_TRUE(seen_);
  Click("cmdCancel");
  EXPECT_FALSE(ended_);
}

TEST_F(ExitGuardTest, EachPressThatCameTooEarlyMakesTheNextOneWait) {
  // Where the machine stalled between two clicks, the second one may count: that says nothing.
  EXPECT_TRUE(WaitUntil([this] { return ClickOnAndOn(); }));
}

TEST_F(ExitGuardTest, APressOfItsOwnCounts) {
  QApplication::setDoubleClickInterval(20);
  WhenRunning([this] { Click("cmdCancel"); });
  Click("cmdOK");
  PressLater();
  EXPECT_TRUE(ended_);
}

TEST_F(ExitGuardTest, AQuickClickThatIsSeenLateDoesNotEndTheProgram) {
  QApplication::setDoubleClickInterval(20);
  WhenRunning([this] { ClickAt(5000); });
  Click("cmdOK");
  ASSERT_EQ(Caption("cmdCancel"), "Exit");
  WaitUntilAPressCounts();
  ClickAt(5020);
  EXPECT_FALSE(ended_);
  WaitUntilAPressCounts();
  ClickAt(5041);
  EXPECT_TRUE(ended_);
}

TEST_F(ExitGuardTest, AQuickEnterThatIsSeenLateDoesNotEndTheProgram) {
  QApplication::setDoubleClickInterval(20);
  WhenRunning([this] { ClickAt(5000); });
  Click("cmdOK");
  ASSERT_EQ(DefaultButton(), "cmdCancel");
  for (const quint64 time : {quint64{5020}, quint64{5041}}) {
    WaitUntilAPressCounts();
    EXPECT_FALSE(ended_);
    // To the window itself: no button has the focus.
    QKeyEvent enter(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier);
    enter.setTimestamp(time);
    QApplication::sendEvent(&Window(), &enter);
  }
  EXPECT_TRUE(ended_);
}

TEST_F(ExitGuardTest, APressWithoutATimeCountsAfterADoubleClick) {
  QApplication::setDoubleClickInterval(20);
  WhenRunning([this] { ClickAt(5000); });
  Click("cmdOK");
  ClickAt(5001);
  WaitUntilAPressCounts();
  // As assistive programs do it.
  Button("cmdCancel")->click();
  EXPECT_TRUE(ended_);
}

TEST_F(ExitGuardTest, AKeyThatPressesNothingIsNoPressBefore) {
  QApplication::setDoubleClickInterval(20);
  WhenRunning([this] { Click("cmdCancel"); });
  Click("cmdOK");
  WaitUntilAPressCounts();
  QKeyEvent shift(QEvent::KeyPress, Qt::Key_Shift, Qt::ShiftModifier);
  shift.setTimestamp(900000);
  QApplication::sendEvent(Button("cmdCancel"), &shift);
  ClickAt(900001);
  EXPECT_TRUE(ended_);
}

TEST_F(ExitGuardTest, CancelIsHeardAtOnce) {
  // "Exit" was shown just before, while a question was open.
  FileName(3) = folder_.File("joined.pdf");
  WhenRunning([this] { Click("cmdCancel"); });
  Click("cmdOK");
  EXPECT_EQ(Merge().MergeStatus, -1);
}

TEST_F(ExitGuardTest, APressBegunOnCancelDoesNotCountOnExit) {
  WhenRunning([this] {
    QTest::mousePress(Button("cmdCancel"), Qt::LeftButton);
    Window().cmdCancel_Click();
  });
  Click("cmdOK");
  ASSERT_EQ(Caption("cmdCancel"), "Exit");
  QTest::mouseRelease(Button("cmdCancel"), Qt::LeftButton);
  EXPECT_FALSE(ended_);
}

TEST_F(ExitGuardTest, ASpaceBarHeldDownOnCancelDoesNotCountOnExit) {
  WhenRunning([this] {
    QTest::keyPress(Button("cmdCancel"), Qt::Key_Space);
    Window().cmdCancel_Click();
  });
  Click("cmdOK");
  QTest::keyRelease(Button("cmdCancel"), Qt::Key_Space);
  EXPECT_FALSE(ended_);
}

TEST_F(ExitGuardTest, TheSecondClickOfADoubleClickOnCancelDoesNotCountOnExit) {
  WhenRunning([this] { Click("cmdCancel"); });
  Click("cmdOK");
  ASSERT_EQ(Caption("cmdCancel"), "Exit");
  // What the toolkit makes of the second click.
  const QPointF middle = Button("cmdCancel")->rect().center();
  QMouseEvent second(QEvent::MouseButtonDblClick, middle, Button("cmdCancel")->mapToGlobal(middle),
                     Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
  QApplication::sendEvent(Button("cmdCancel"), &second);
  QTest::mouseRelease(Button("cmdCancel"), Qt::LeftButton);
  EXPECT_FALSE(ended_);
}

TEST_F(ExitGuardTest, AnEnterKeyHeldDownPressesNothingElse) {
  WhenRunning([this] { Window().cmdCancel_Click(); });
  Click("cmdOK");
  FileName(3).clear();
  Window().RefreshControls();
  ASSERT_EQ(DefaultButton(), "cmdCancel");
  QKeyEvent again(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier, QString(), true);
  QApplication::sendEvent(Button("cmdCancel"), &again);
  EXPECT_FALSE(ended_);
}

TEST_F(ExitGuardTest, ARepetitionOfAHeldEnterKeyThatLooksLikeANewPressPressesNothing) {
  WhenRunning([this] { Window().cmdCancel_Click(); });
  Click("cmdOK");
  FileName(3).clear();
  Window().RefreshControls();
  ASSERT_EQ(DefaultButton(), "cmdCancel");
  QKeyEvent release(QEvent::KeyRelease, Qt::Key_Return, Qt::NoModifier);
  release.setTimestamp(4711);
  QKeyEvent press(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier);
  press.setTimestamp(4711);
  QApplication::sendEvent(Button("cmdCancel"), &release);
  QApplication::sendEvent(Button("cmdCancel"), &press);
  EXPECT_FALSE(ended_);
}

TEST_F(ExitGuardTest, ALetterTypedTwiceAtOneTimeIsTypedTwice) {
  QLineEdit field;
  for (const QEvent::Type type :
       {QEvent::KeyPress, QEvent::KeyRelease, QEvent::KeyPress, QEvent::KeyRelease}) {
    QKeyEvent key(type, Qt::Key_1, Qt::NoModifier, QStringLiteral("1"));
    key.setTimestamp(4711);
    QApplication::sendEvent(&field, &key);
  }
  EXPECT_EQ(field.text(), QStringLiteral("11"));
}

}  // namespace
}  // namespace folioweld::testing
