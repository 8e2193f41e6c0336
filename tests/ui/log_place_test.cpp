#include "ui/log_place.h"

#include <gtest/gtest.h>

namespace folioweld::testing {
namespace {

/// A main window in the middle of a screen.
QRect Centred(const QRect& desk, QSize size = {756, 510}) {
  QRect place(QPoint(), size);
  place.moveCenter(desk.center());
  return place;
}

TEST(LogPlaceTest, IsBelowTheMainWindowAndAsWide) {
  const QRect desk(0, 0, 1600, 1200);
  const QRect main = Centred(desk);
  const QRect log = LogPlace(desk, main);
  EXPECT_EQ(log.top(), main.bottom() + 1);
  EXPECT_EQ(log.left(), main.left());
  EXPECT_EQ(log.width(), main.width());
}

TEST(LogPlaceTest, IsBesideTheMainWindowWhereThereIsNoRoomBelow) {
  const QRect desk(0, 0, 1366, 768);
  const QRect main = Centred(desk);
  EXPECT_EQ(LogPlace(desk, main).left(), main.right() + 1);
  QRect atTheRight = main;
  atTheRight.moveRight(desk.right());
  EXPECT_EQ(LogPlace(desk, atTheRight).right(), atTheRight.left() - 1);
}

TEST(LogPlaceTest, HidesNothingOfTheMainWindowWhereThereIsRoomForBothAndIsAlwaysOnTheScreen) {
  for (const QRect& desk :
       {QRect(0, 0, 1600, 1200), QRect(0, 0, 1366, 768), QRect(0, 28, 1366, 740), QRect(0, 0, 1066, 800),
        QRect(0, 0, 800, 600), QRect(0, 0, 640, 480), QRect(1600, 0, 1280, 720), QRect(0, 0, 320, 100)}) {
    for (const QRect& main : {Centred(desk), QRect(desk.topLeft(), QSize(756, 510)),
                              Centred(desk, {790, 590}), QRect(desk.bottomRight(), QSize(756, 510))}) {
      const QRect log = LogPlace(desk, main);
      EXPECT_EQ(log & desk, log) << desk.width() << "x" << desk.height();
      EXPECT_FALSE(log.isEmpty());
      const bool roomBelow = desk.bottom() - main.bottom() >= 110 && main.left() >= desk.left();
      const bool roomBeside =
          qMax(desk.right() - main.right(), main.left() - desk.left()) >= 220 && desk.contains(main);
      if (roomBelow || roomBeside) {
        EXPECT_FALSE(log.intersects(main)) << desk.width() << "x" << desk.height();
      }
    }
  }
}

}  // namespace
}  // namespace folioweld::testing
