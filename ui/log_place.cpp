#include "ui/log_place.h"

namespace folioweld {

namespace {

// With the frame, which takes up to 40 of the height.
constexpr int kHeight = 250;
constexpr int kEnoughHeight = 200;
constexpr int kLeastHeight = 110;
constexpr int kLeastWidth = 220;
constexpr int kWidthBeside = 500;

QRect Below(const QRect& desk, const QRect& mainWindow) {
  const int width = qMin(mainWindow.width(), desk.width());
  const int left = qBound(desk.left(), mainWindow.left(), desk.right() - width + 1);
  return {left, qMax(mainWindow.bottom() + 1, desk.top()), width,
          qMin(kHeight, desk.bottom() - mainWindow.bottom())};
}

}  // namespace

QRect LogPlace(const QRect& desk, const QRect& mainWindow) {
  const int below = desk.bottom() - mainWindow.bottom();
  if (below >= kEnoughHeight) return Below(desk, mainWindow);
  const int height = qMin(mainWindow.height(), desk.height());
  const int beside = qBound(desk.top(), mainWindow.top(), desk.bottom() - height + 1);
  const int right = desk.right() - mainWindow.right();
  if (right >= kLeastWidth) return {mainWindow.right() + 1, beside, qMin(kWidthBeside, right), height};
  const int left = mainWindow.left() - desk.left();
  if (left >= kLeastWidth) {
    const int width = qMin(kWidthBeside, left);
    return {mainWindow.left() - width, beside, width, height};
  }
  if (below >= kLeastHeight) return Below(desk, mainWindow);
  const int width = qMin(mainWindow.width(), desk.width());
  const int least = qMin(kLeastHeight, desk.height());
  return {desk.left() + (desk.width() - width) / 2, desk.bottom() - least + 1, width, least};
}

}  // namespace folioweld
