// Every control at its place of the design.

#include <QScreen>

#include "tests/ui/window_fixture.h"
#include "ui/sorting_options.h"

namespace folioweld::testing {
namespace {

/// Left, top, width and height in twips, within the control's parent.
struct Place {
  const char* Name;
  int Left, Top, Width, Height;
};

void ExpectPlace(const QWidget& control, const Place& place, double scale) {
  const auto pixels = [scale](int twips) { return qRound(twips * scale / 15); };
  const QRect wanted(pixels(place.Left), pixels(place.Top), pixels(place.Width), pixels(place.Height));
  const QRect seen = control.geometry();
  const auto near = [](int one, int other) { return qAbs(one - other) <= 1; };
  EXPECT_TRUE(near(seen.left(), wanted.left()) && near(seen.top(), wanted.top()) &&
              near(seen.width(), wanted.width()) && near(seen.height(), wanted.height()))
      << place.Name << " at " << seen.left() << "," << seen.top() << " " << seen.width() << "x"
      << seen.height();
}

using LayoutTest = WindowFixture;

TEST_F(LayoutTest, TheControlsOfTheWindowStandWhereTheDesignHasThem) {
  Open();
  const double scale = Window().centralWidget()->width() / 754.0;
  for (const Place& place :
       {Place{"frameFileIn1", 50, 60, 11120, 1890}, Place{"frameFileIn2", 50, 2050, 11120, 1890},
        Place{"frameFileOut", 50, 4000, 11120, 1890}, Place{"txtFileName0", 60, 210, 10000, 350},
        Place{"txtFileName1", 60, 210, 10000, 350}, Place{"txtFileName2", 60, 210, 10000, 350},
        Place{"txtDoing0", 60, 650, 9900, 1000}, Place{"txtDoing1", 60, 650, 9900, 1000},
        Place{"txtDoing2", 60, 650, 9900, 1000}, Place{"cmdInput1", 10110, 210, 900, 350},
        Place{"cmdInput2", 10110, 210, 900, 350}, Place{"cmdOutput", 10110, 210, 900, 350},
        Place{"CmdClr1", 10110, 600, 900, 300}, Place{"CmdClr2", 10110, 600, 900, 300},
        Place{"CmdClrOut", 10110, 600, 900, 300}, Place{"PictToggle", 10140, 990, 825, 825},
        Place{"cmdOK", 60, 6000, 10000, 700}, Place{"cmdCancel", 10100, 6000, 1065, 700}}) {
    ExpectPlace(*Find<QWidget>(place.Name), place, scale);
  }
}

TEST_F(LayoutTest, TheControlsLieInTheirFrames) {
  Open();
  for (const auto& [control, frame] :
       {std::pair{"cmdInput1", "frameFileIn1"}, std::pair{"txtDoing1", "frameFileIn2"},
        std::pair{"CmdClrOut", "frameFileOut"}, std::pair{"PictToggle", "frameFileIn1"}}) {
    EXPECT_EQ(Find<QWidget>(control)->parentWidget(), Find<QWidget>(frame)) << control;
  }
}

TEST_F(LayoutTest, TheSwapPictureIsPressedWhileTheMouseHoldsIt) {
  Open();
  ChooseAll();
  const auto* picture = Button("PictToggle");
  const auto holds = [&](QPalette::ColorRole role) {
    const QImage image = Button("PictToggle")->grab().toImage();
    for (int i = 0; i < image.width() * image.height(); ++i) {
      const QColor colour = image.pixelColor(i % image.width(), i / image.width());
      if (colour == picture->palette().color(role)) return true;
    }
    return false;
  };
  QTest::mousePress(Button("PictToggle"), Qt::LeftButton);
  EXPECT_TRUE(holds(QPalette::Highlight));
  QTest::mouseRelease(Button("PictToggle"), Qt::LeftButton);
  EXPECT_FALSE(holds(QPalette::Highlight));
}

TEST(SortingOptionsLayoutTest, TheControlsStandWhereTheDesignHasThem) {
  SortingOptions dialog(nullptr);
  const double scale = dialog.width() / 432.0;
  for (const Place& place :
       {Place{"Label1", 90, 150, 4140, 405}, Place{"Frame1", 120, 600, 4455, 1920},
        Place{"Option10", 165, 270, 3135, 405}, Place{"Option12", 165, 1005, 3045, 405},
        Place{"Option11", 285, 1230, 3030, 405}, Place{"Option13", 285, 1965, 3465, 405},
        Place{"cmdOK", 4665, 750, 1695, 1740}, Place{"cmdCancel", 4665, 135, 1710, 420}}) {
    const auto* control = dialog.findChild<QWidget*>(QString::fromLatin1(place.Name));
    ASSERT_NE(control, nullptr) << place.Name;
    ExpectPlace(*control, place, scale);
  }
}

TEST(SortingOptionsLayoutTest, TheDialogIsInTheMiddleOfTheScreen) {
  QWidget window;
  window.setGeometry(0, 0, 50, 50);
  window.show();
  SortingOptions dialog(&window);
  dialog.show();
  const QPoint off = dialog.frameGeometry().center() - dialog.screen()->geometry().center();
  EXPECT_LE(off.manhattanLength(), 2);
}

}  // namespace
}  // namespace folioweld::testing
