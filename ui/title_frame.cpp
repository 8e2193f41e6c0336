#include "ui/title_frame.h"

#include <QPainter>
#include <QPainterPath>

namespace folioweld {

namespace {

constexpr int kTitleLeft = 8;
constexpr int kTitleGap = 3;
constexpr qreal kCorner = 3;
constexpr qreal kLineStrength = 0.3;

/// Between the face and the text, so that it can be seen on a light and on a dark palette.
QColor LineColour(const QPalette& palette) {
  const QColor face = palette.color(QPalette::Window);
  const QColor text = palette.color(QPalette::WindowText);
  const auto mixed = [](float a, float b) { return a + (b - a) * static_cast<float>(kLineStrength); };
  return QColor::fromRgbF(mixed(face.redF(), text.redF()), mixed(face.greenF(), text.greenF()),
                          mixed(face.blueF(), text.blueF()));
}

}  // namespace

void TitleFrame::ShowMarked(bool marked) {
  if (marked == marked_) return;
  marked_ = marked;
  update();
}

void TitleFrame::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  const QRect words = painter.fontMetrics().boundingRect(title());
  const QRect place(kTitleLeft, 0, words.width(), painter.fontMetrics().height());
  QPainterPath outside;
  outside.addRect(rect());
  QPainterPath gap;
  gap.addRect(place.adjusted(-kTitleGap, 0, kTitleGap, 0));
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setClipPath(outside.subtracted(gap));
  painter.setPen(marked_ ? QPen(palette().color(QPalette::Highlight), 2) : QPen(LineColour(palette()), 1));
  painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, place.center().y() + 0.5, -0.5, -0.5), kCorner,
                          kCorner);
  painter.restore();
  painter.setPen(palette().color(QPalette::WindowText));
  painter.drawText(place.adjusted(0, 0, kTitleGap, 0), Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                   title());
}

}  // namespace folioweld
