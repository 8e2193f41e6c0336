#pragma once

#include <QRect>
#include <functional>

namespace folioweld {

/// The grid on which the windows are designed: 1440 twips an inch, 15 twips a pixel at scale 1.
class TwipGrid {
 public:
  static constexpr int kTwipsPerPixel = 15;
  static constexpr double kStep = 0.02;
  static constexpr double kLargestScale = 6.0;

  explicit TwipGrid(double scale) : scale_(scale) {}

  [[nodiscard]] int Pixels(int twips) const { return qRound(twips * scale_ / kTwipsPerPixel); }
  [[nodiscard]] QSize Size(int width, int height) const { return {Pixels(width), Pixels(height)}; }
  [[nodiscard]] QRect Rect(int left, int top, int width, int height) const {
    return {QPoint(Pixels(left), Pixels(top)), Size(width, height)};
  }

  /// The design's own scale, or the smallest larger one on which everything fits; `largest` where it fits on
  /// none.
  [[nodiscard]] static TwipGrid Fitting(const std::function<bool(const TwipGrid&)>& fits,
                                        double largest = kLargestScale) {
    TwipGrid grid(1.0);
    while (grid.scale_ < largest && !fits(grid)) grid.scale_ = qMin(grid.scale_ + kStep, largest);
    return grid;
  }

 private:
  double scale_;
};

}  // namespace folioweld
