// The swap picture, pixel by pixel where that says something.

#include "ui/toggle_picture.h"

#include <QImage>
#include <QTest>
#include <gtest/gtest.h>
#include <set>

namespace folioweld::testing {
namespace {

class TogglePictureTest : public ::testing::Test {
 protected:
  TogglePictureTest() { picture_.resize(55, 55); }

  [[nodiscard]] QImage Drawn() { return picture_.grab().toImage(); }
  /// Whether the colour is somewhere in the picture.
  [[nodiscard]] bool Holds(const QColor& colour) {
    const QImage image = Drawn();
    for (int y = 0; y < image.height(); ++y) {
      for (int x = 0; x < image.width(); ++x) {
        if (image.pixelColor(x, y) == colour) return true;
      }
    }
    return false;
  }
  [[nodiscard]] QColor At(int twipsX, int twipsY) { return Drawn().pixelColor(twipsX / 15, twipsY / 15); }
  [[nodiscard]] QColor Colour(QPalette::ColorRole role) { return picture_.palette().color(role); }

  TogglePicture picture_{nullptr};
};

TEST_F(TogglePictureTest, IsDrawnInTheTextColourOverTheFace) {
  EXPECT_TRUE(Holds(Colour(QPalette::ButtonText)));
  EXPECT_EQ(At(412, 412), Colour(QPalette::Button)) << "the middle is empty";
}

TEST_F(TogglePictureTest, HasAnArcOnEachSideAndArrowheadsAboveLeftAndBelowRight) {
  const QColor text = Colour(QPalette::ButtonText);
  const int left = 825 / 2 + 37 - 309;
  const int right = 825 / 2 - 37 + 309;
  EXPECT_EQ(At(left, 412), text);
  EXPECT_EQ(At(right, 412), text);
  EXPECT_EQ(At(275, 250), text);
  EXPECT_EQ(At(640, 600), text);
  EXPECT_EQ(At(190, 215), text);
  EXPECT_EQ(At(550, 595), text);
  EXPECT_EQ(At(412, 110), Colour(QPalette::Button)) << "open above";
  EXPECT_EQ(At(412, 715), Colour(QPalette::Button)) << "open below";
}

TEST_F(TogglePictureTest, IsDrawnInTheHighlightColourWhilePressed) {
  picture_.DrawToggle(true);
  EXPECT_TRUE(Holds(Colour(QPalette::Highlight)));
  EXPECT_FALSE(Holds(Colour(QPalette::ButtonText)));
  picture_.DrawToggle(false);
  EXPECT_FALSE(Holds(Colour(QPalette::Highlight)));
}

TEST_F(TogglePictureTest, IsErasedWhileDisabled) {
  picture_.setEnabled(false);
  const QImage image = Drawn();
  std::set<QRgb> colours;
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x) colours.insert(image.pixel(x, y));
  }
  EXPECT_EQ(colours.size(), 1U);
}

TEST_F(TogglePictureTest, VanishesIntoItsFrameWhileDisabledOnEveryPalette) {
  QWidget frame;
  QPalette palette;
  palette.setColor(QPalette::Window, QColor(42, 46, 50));
  palette.setColor(QPalette::Button, QColor(49, 54, 59));
  frame.setPalette(palette);
  frame.resize(75, 75);
  TogglePicture picture(&frame);
  picture.setGeometry(10, 10, 55, 55);
  picture.setEnabled(false);
  const QImage image = frame.grab().toImage();
  for (int i = 0; i < 75; ++i) EXPECT_EQ(image.pixelColor(i, i), QColor(42, 46, 50)) << i;
}

TEST_F(TogglePictureTest, FollowsADarkPalette) {
  QPalette dark;
  dark.setColor(QPalette::Button, QColor(40, 40, 40));
  dark.setColor(QPalette::ButtonText, QColor(240, 240, 240));
  picture_.setPalette(dark);
  EXPECT_EQ(At(412, 412), QColor(40, 40, 40));
  EXPECT_TRUE(Holds(QColor(240, 240, 240)));
}

}  // namespace
}  // namespace folioweld::testing
