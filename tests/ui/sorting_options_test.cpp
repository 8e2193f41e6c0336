// The sorting options dialog.

#include "ui/sorting_options.h"

#include <QRadioButton>
#include <QTest>
#include <gtest/gtest.h>

namespace folioweld::testing {
namespace {

class SortingOptionsTest : public ::testing::Test {
 protected:
  [[nodiscard]] QRadioButton* Option(int index) {
    return dialog_.findChild<QRadioButton*>(QStringLiteral("Option1") + QString::number(index));
  }
  [[nodiscard]] QAbstractButton* Button(const char* name) {
    return dialog_.findChild<QAbstractButton*>(QString::fromLatin1(name));
  }
  /// The index of the checked option; -1 when it is not exactly one.
  [[nodiscard]] int Checked() {
    int checked = -1;
    for (int index = 0; index < 4; ++index) {
      if (Option(index)->isChecked()) checked = checked < 0 ? index : 9;
    }
    return checked == 9 ? -1 : checked;
  }

  SortingOptions dialog_{nullptr};
};

TEST_F(SortingOptionsTest, HasTheDesignsCaptions) {
  EXPECT_EQ(dialog_.windowTitle().toStdString(), "Directory merge sorting option");
  EXPECT_EQ(dialog_.findChild<QLabel*>(QStringLiteral("Label1"))->text().toStdString(),
            "Please specify your sorting option for directory merge");
  EXPECT_EQ(dialog_.findChild<QGroupBox*>(QStringLiteral("Frame1"))->title().toStdString(),
            " Sort files according to: ");
  EXPECT_EQ(Option(0)->text().toStdString(), "lexical ordering of file names");
  EXPECT_EQ(Option(1)->text().toStdString(), "reverse lexical ordering of file names");
  EXPECT_EQ(Option(2)->text().toStdString(), "last modification date and  time");
  EXPECT_EQ(Option(3)->text().toStdString(), "last modification date and time (reversed)");
  EXPECT_EQ(Button("cmdOK")->text().toStdString(), "I choose this option");
  EXPECT_EQ(Button("cmdCancel")->text().toStdString(), "Cancel");
}

TEST_F(SortingOptionsTest, EachValueChecksItsOptionAndNoOther) {
  const std::pair<std::int16_t, int> values[] = {{1, 0}, {-1, 1}, {2, 2}, {-2, 3}};
  for (const auto& [value, index] : values) {
    dialog_.SetSortOption(value);
    EXPECT_EQ(Checked(), index);
    EXPECT_EQ(dialog_.SortOption(), value);
  }
}

TEST_F(SortingOptionsTest, AnyOtherValueLeavesTheOptionAsItWas) {
  dialog_.SetSortOption(2);
  dialog_.SetSortOption(5);
  EXPECT_EQ(Checked(), 2);
  EXPECT_EQ(dialog_.SortOption(), 5);
}

TEST_F(SortingOptionsTest, AnOptionOutsideTheFrameUnchecksTheOneInsideAndTheReverse) {
  dialog_.SetSortOption(1);
  dialog_.show();
  for (const int index : {1, 2, 3, 0, 0}) {
    QTest::mouseClick(Option(index), Qt::LeftButton);
    EXPECT_EQ(Checked(), index);
  }
}

TEST_F(SortingOptionsTest, ChoosingGivesTheOptionsValue) {
  const std::int16_t values[] = {1, -1, 2, -2};
  for (int index = 0; index < 4; ++index) {
    dialog_.SetSortOption(1);
    dialog_.show();
    QTest::mouseClick(Option(index), Qt::LeftButton);
    EXPECT_EQ(dialog_.SortOption(), 1) << "not before the choice";
    QTest::mouseClick(Button("cmdOK"), Qt::LeftButton);
    EXPECT_EQ(dialog_.SortOption(), values[index]);
    EXPECT_FALSE(dialog_.isVisible());
  }
}

TEST_F(SortingOptionsTest, CancelAfterAnotherOptionKeepsTheCallersValue) {
  dialog_.SetSortOption(-1);
  dialog_.show();
  QTest::mouseClick(Option(2), Qt::LeftButton);
  QTest::mouseClick(Button("cmdCancel"), Qt::LeftButton);
  EXPECT_EQ(dialog_.SortOption(), -1);
  EXPECT_FALSE(dialog_.isVisible());
}

TEST_F(SortingOptionsTest, EscapeAndTheCloseBoxKeepTheCallersValue) {
  dialog_.SetSortOption(-1);
  dialog_.show();
  QTest::mouseClick(Option(2), Qt::LeftButton);
  QTest::keyClick(&dialog_, Qt::Key_Escape);
  EXPECT_FALSE(dialog_.isVisible());
  dialog_.show();
  dialog_.close();
  EXPECT_EQ(dialog_.SortOption(), -1);
}

TEST_F(SortingOptionsTest, ArrowKeysGoThroughTheOptionsAndEnterChooses) {
  dialog_.SetSortOption(1);
  dialog_.show();
  Option(0)->setFocus();
  for (const int index : {1, 2, 3, 0}) {
    QTest::keyClick(dialog_.focusWidget(), Qt::Key_Down);
    EXPECT_EQ(Checked(), index);
    EXPECT_EQ(dialog_.focusWidget(), Option(index));
  }
  QTest::keyClick(dialog_.focusWidget(), Qt::Key_Up);
  EXPECT_EQ(Checked(), 3);
  QTest::keyClick(dialog_.focusWidget(), Qt::Key_Return);
  EXPECT_EQ(dialog_.SortOption(), -2);
}

TEST_F(SortingOptionsTest, EnterOnCancelCancels) {
  dialog_.SetSortOption(-1);
  dialog_.show();
  QTest::mouseClick(Option(2), Qt::LeftButton);
  Button("cmdCancel")->setFocus();
  QTest::keyClick(Button("cmdCancel"), Qt::Key_Return);
  EXPECT_EQ(dialog_.SortOption(), -1);
  EXPECT_FALSE(dialog_.isVisible());
}

TEST_F(SortingOptionsTest, EveryCaptionFits) {
  for (int index = 0; index < 4; ++index)
    EXPECT_GE(Option(index)->width(), Option(index)->sizeHint().width());
  EXPECT_EQ(dialog_.minimumSize(), dialog_.maximumSize());
}

}  // namespace
}  // namespace folioweld::testing
