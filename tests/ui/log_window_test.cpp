// The log window and the texts that it shows.

#include <QPlainTextEdit>
#include <gmock/gmock.h>

#include "tests/ui/window_fixture.h"
#include "ui/file_names.h"

namespace folioweld::testing {
namespace {

class LogWindowTest : public WindowFixture {
 protected:
  void SetUp() override { Open(); }

  [[nodiscard]] QPlainTextEdit* Box() {
    return Window().TheLogWindow().findChild<QPlainTextEdit*>(QStringLiteral("logText"));
  }
  [[nodiscard]] std::string Shown() { return Box()->toPlainText().toStdString(); }
};

TEST_F(LogWindowTest, IsFilledByTheTimerTwiceASecond) {
  const auto* timer = Window().TheLogWindow().findChild<QTimer*>(QStringLiteral("timerLog1"));
  ASSERT_NE(timer, nullptr);
  EXPECT_EQ(timer->interval(), 500);
  EXPECT_TRUE(timer->isActive());
  Window().Log().AddLogLine("a line");
  EXPECT_THAT(Shown(), ::testing::Not(::testing::HasSubstr("a line")))
      << "writers do not wait for the screen";
  EXPECT_TRUE(WaitFor([this] { return Shown().find("a line") != std::string::npos; }));
}

TEST_F(LogWindowTest, ShowsTheNewestLineAtTheBottomWithTheCaretAfterIt) {
  for (int i = 0; i < 200; ++i) Window().Log().AddLogLine("line " + std::to_string(i));
  Window().TheLogWindow().timerLog1_Timer();
  EXPECT_THAT(Shown(), ::testing::EndsWith("line 198\nline 199\n"));
  EXPECT_TRUE(Box()->textCursor().atEnd());
  EXPECT_TRUE(Box()->isReadOnly());
}

TEST_F(LogWindowTest, ATickWithoutANewLineLeavesTheBoxAlone) {
  Window().Log().AddLogLine("a line");
  Window().TheLogWindow().timerLog1_Timer();
  Box()->setPlainText(QStringLiteral("untouched"));
  Window().TheLogWindow().timerLog1_Timer();
  EXPECT_EQ(Shown(), "untouched");
}

TEST_F(LogWindowTest, ATickWaitsWhileAWriterIsBusy) {
  Window().Log().AddLogLine("a line");
  Window().Log().LogBusy = true;
  Window().TheLogWindow().timerLog1_Timer();
  EXPECT_THAT(Shown(), ::testing::Not(::testing::HasSubstr("a line")));
  Window().Log().LogBusy = false;
  Window().TheLogWindow().timerLog1_Timer();
  EXPECT_THAT(Shown(), ::testing::HasSubstr("a line"));
}

TEST_F(LogWindowTest, ControlBytesAreReplacedInTheBoxAndKeptInTheRing) {
  const std::string line("a\0b\x01", 4);
  Window().Log().AddLogLine(line);
  Window().TheLogWindow().timerLog1_Timer();
  EXPECT_THAT(Shown(), ::testing::HasSubstr("a\xC2\xBF"
                                            "b\xC2\xBF"));
  EXPECT_EQ(Window().Log().LogLine(Window().Log().LogIndex()), line);
}

TEST_F(LogWindowTest, ClearingEmptiesRingAndBox) {
  Window().Log().AddLogLine("a line");
  Window().TheLogWindow().timerLog1_Timer();
  Window().TheLogWindow().ClearLogScreen();
  EXPECT_EQ(Shown(), "");
  Window().Log().AddLogLine("next");
  EXPECT_EQ(Window().Log().LogIndex(), 1);
}

TEST_F(LogWindowTest, TheBoxFillsTheWindow) {
  Window().TheLogWindow().resize(500, 300);
  EXPECT_TRUE(WaitFor([this] { return Box()->size() == QSize(500, 300); }));
}

TEST(ShownLogLine, ReadsUtf8WhereTheWholeLineIsValid) {
  EXPECT_EQ(ShownLogLine("caf\xC3\xA9"), QStringLiteral("caf\u00e9"));
}

TEST(ShownLogLine, TakesOneCharacterAByteOtherwise) {
  EXPECT_EQ(ShownLogLine("caf\xC3\xA9 \xE9"), QStringLiteral("caf\u00c3\u00a9 \u00e9"));
}

TEST(ShownLogLine, ReplacesWhatLiesOutsideLatin1Once) {
  EXPECT_EQ(ShownLogLine("\xE2\x82\xAC \xF0\x9F\x98\x80\x7F"), QStringLiteral("\u00bf \u00bf\u00bf"));
}

TEST(ShownLog, DecodesLineByLine) {
  EXPECT_EQ(ShownLog("\xC3\xA9\r\n\xE9\r\n"), QStringLiteral("\u00e9\r\n\u00e9\r\n"));
}

TEST(ShownText, ReadsTheValidPartsOfMixedBytes) {
  EXPECT_EQ(ShownText("\xC3\xA9\xE9\xE2\x82\xAC"), QStringLiteral("\u00e9\u00e9\u20ac"));
}

TEST(ShownPath, StaysOnOneLine) {
  EXPECT_EQ(ShownPath("/a\nb", 116), QStringLiteral("/a\u00bfb"));
}

TEST(PathFromDialog, GivesBackTheVeryBytesOfTheNameThatWasGiven) {
  const std::string given = "/tmp/caf\xE9.pdf";
  EXPECT_EQ(PathFromDialog(PathForDialog(given), given), given);
  EXPECT_EQ(PathFromDialog(QStringLiteral("/tmp/caf\u00e9"), given), "/tmp/caf\xC3\xA9");
}

}  // namespace
}  // namespace folioweld::testing
