// Where the keyboard is, and what Enter and Space do there.

#include <QImage>
#include <set>

#include "tests/ui/window_fixture.h"

namespace folioweld::testing {
namespace {

class FocusTest : public WindowFixture {
 protected:
  /// The object name of what has the focus; empty when no control has it.
  [[nodiscard]] std::string Focused() {
    const QWidget* focused = Window().focusWidget();
    return focused == nullptr ? std::string() : focused->objectName().toStdString();
  }
  void Press(Qt::Key key) { QTest::keyClick(Window().focusWidget(), key); }
  void PressOn(const char* control, Qt::Key key) {
    Find<QWidget>(control)->setFocus();
    Press(key);
  }
};

TEST_F(FocusTest, BeginsOnTheFirstSelect) {
  Open();
  EXPECT_EQ(Focused(), "cmdInput1");
}

TEST_F(FocusTest, EveryControlCanBeReachedByKeyboardInTheOrderOfThePlaces) {
  Open();
  ChooseAll();
  Button("cmdInput1")->setFocus();
  std::string order;
  for (int i = 0; i < 9; ++i) {
    order += Window().focusWidget()->objectName().toStdString() + " ";
    QTest::keyClick(Window().focusWidget(), Qt::Key_Tab);
  }
  EXPECT_EQ(order, "cmdInput1 CmdClr1 PictToggle cmdInput2 CmdClr2 cmdOutput CmdClrOut cmdOK cmdCancel ");
}

TEST_F(FocusTest, EscapeNeverClosesTheWindow) {
  Open();
  QTest::keyClick(&Window(), Qt::Key_Escape);
  QTest::keyClick(Button("cmdInput1"), Qt::Key_Escape);
  EXPECT_TRUE(Window().isVisible());
  EXPECT_FALSE(ended_);
}

TEST_F(FocusTest, EnterPressesTheButtonThatHasIt) {
  Open();
  ChooseAll();
  PressOn("cmdInput2", Qt::Key_Return);
  EXPECT_EQ(dialogs_.OpenQuestions.size(), 1U);
  PressOn("PictToggle", Qt::Key_Enter);
  EXPECT_EQ(FileName(1), folder_.File("second.pdf"));
  PressOn("CmdClr2", Qt::Key_Return);
  EXPECT_EQ(FileName(2), "");
  EXPECT_FALSE(Exists(folder_.File("joined.pdf"))) << "the default button was pressed";
  PressOn("cmdCancel", Qt::Key_Return);
  EXPECT_TRUE(ended_);
}

TEST_F(FocusTest, EnterPressesTheDefaultButtonWhenNoButtonHasIt) {
  Open();
  ChooseAll();
  desktop_.Starts = false;
  Window().centralWidget()->setFocus();
  Press(Qt::Key_Return);
  EXPECT_TRUE(Exists(folder_.File("joined.pdf")));
}

TEST_F(FocusTest, EnterHeldDownPressesOnce) {
  Open();
  ChooseAll();
  for (const char* button : {"cmdInput1", "PictToggle"}) {
    QKeyEvent repeated(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier, QString(), true);
    QApplication::sendEvent(Button(button), &repeated);
  }
  EXPECT_TRUE(dialogs_.OpenQuestions.empty());
  EXPECT_EQ(FileName(1), folder_.File("first.pdf"));
}

TEST_F(FocusTest, LeavesAClearButtonThatIsDoneForSelectOfItsPlace) {
  Open();
  ChooseAll();
  PressOn("CmdClr2", Qt::Key_Space);
  EXPECT_EQ(Focused(), "cmdInput2");
  PressOn("CmdClrOut", Qt::Key_Space);
  EXPECT_EQ(Focused(), "cmdOutput");
  PressOn("CmdClr1", Qt::Key_Space);
  EXPECT_EQ(Focused(), "cmdInput1");
}

TEST_F(FocusTest, PressingClearOverAndOverWithSpaceNeverReachesAnotherPlace) {
  Open();
  ChooseAll();
  Find<QWidget>("CmdClr1")->setFocus();
  for (int i = 0; i < 5; ++i) Press(Qt::Key_Space);
  EXPECT_EQ(FileName(1) + FileName(2), "");
  EXPECT_EQ(FileName(3), folder_.File("joined.pdf"));
  EXPECT_FALSE(ended_);
}

TEST_F(FocusTest, GoesNowhereWhenSelectOfThePlaceIsDisabledToo) {
  Open();
  FileName(3) = folder_.File("joined.pdf");
  Window().RefreshControls();
  PressOn("CmdClrOut", Qt::Key_Space);
  EXPECT_EQ(Focused(), "");
  Press(Qt::Key_Space);
  EXPECT_FALSE(ended_);
}

TEST_F(FocusTest, LeavesTheSwapPictureAndTheSecondSelectWithTheInputs) {
  Open();
  ChooseAll();
  Find<QWidget>("PictToggle")->setFocus();
  Window().CmdClr2_Click();
  EXPECT_EQ(Focused(), "cmdInput1");
  Find<QWidget>("cmdInput2")->setFocus();
  Window().CmdClr1_Click();
  EXPECT_EQ(Focused(), "");
}

TEST_F(FocusTest, IsOnNoButtonWhileAJobRunsAndSpaceDoesNotCancelIt) {
  Open();
  ChooseAll();
  desktop_.Starts = false;
  std::set<std::string> seen;
  AtEveryTurn([&] {
    if (Caption("cmdCancel") != "CANCEL (abort)") return;
    seen.insert(Focused());
    Press(Qt::Key_Space);
  });
  PressOn("cmdOK", Qt::Key_Space);
  EXPECT_EQ(seen, std::set<std::string>{""});
  EXPECT_TRUE(Exists(folder_.File("joined.pdf")));
  EXPECT_EQ(Focused(), "cmdOK");
}

TEST_F(FocusTest, IsOnNoButtonAfterAJobThatLeavesNoOutput) {
  Open();
  ChooseAll();
  FileName(3) = folder_.File("missing/joined.pdf");
  Click("cmdOK");
  EXPECT_EQ(Focused(), "");
}

TEST_F(FocusTest, IsOnGoAfterAViewer) {
  Open();
  ChooseAll();
  AtEveryTurn([&] {
    if (Caption("cmdCancel") == "Close display window") Press(Qt::Key_Space);
  });
  Click("cmdOK");
  EXPECT_EQ(desktop_.Asked.size(), 1U) << "it was on \"Close display window\"";
  EXPECT_EQ(Focused(), "cmdOK");
}

TEST_F(FocusTest, LooksOtherwiseThanTheDefaultButton) {
  CaptionButton button(QStringLiteral("button"), QStringLiteral("Exit"), nullptr);
  button.resize(71, 47);
  button.show();
  const auto look = [&](bool focus, bool isDefault) {
    focus ? button.setFocus() : button.clearFocus();
    button.setDefault(isDefault);
    return button.grab().toImage();
  };
  ASSERT_TRUE(QTest::qWaitForWindowActive(&button, kPatienceMillis));
  const QImage looks[] = {look(false, false), look(false, true), look(true, false), look(true, true)};
  for (std::size_t i = 0; i < std::size(looks); ++i) {
    for (std::size_t k = 0; k < i; ++k) EXPECT_NE(looks[i], looks[k]) << i << " " << k;
  }
}

}  // namespace
}  // namespace folioweld::testing
