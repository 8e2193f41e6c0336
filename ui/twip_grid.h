#pragma once

#include <QRect>
#include <functional>

namespace folioweld {

/// The grid on which the windows are designed: 1440 twips an inch, 15 twips a pixel at scale 1.
class TwipGrid {
 public:
  explicit TwipGrid(double scale) : scale_(scale) {}

  [[nodiscard]] int Pixels(int twips) const { return qRound(twips * scale_ / kTwipsPerPixel); }
  [[nodiscard]] QSize Size(int width, int height) const { return {Pixels(width), Pixels(height)}; }
  [[nodiscard]] QRect Rect(int left, int top, int width, int height) const {
    return {QPoint(Pixels(left), Pixels(top)), Size(width, height)};
  }

  /// The design's own scale, or the smallest larger one on which everything fits.
  [[nodiscard]] static TwipGrid Fitting(const std::function<bool(const TwipGrid&)>& fits) {
    TwipGrid grid(1.0);
    while (grid.scale_ < kLargestScale && !fits(grid)) grid.scale_ += kStep;
    return grid;
  }

  static constexpr int kTwipsPerPixel = 15;

 private:
  static constexpr double kStep = 0.02;
  static constexpr double kLargestScale = 6.0;

  double scale_;
};

}  // namespace folioweld
