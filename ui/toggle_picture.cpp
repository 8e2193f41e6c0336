#include "ui/toggle_picture.h"

#include <QKeyEvent>
#include <QPainter>
#include <QPainterPath>
#include <QStyleOptionFocusRect>
#include <numbers>

#include "ui/held_keys.h"

namespace folioweld {

namespace {

/// The picture's coordinate space is square.
constexpr qreal kSide = 825;
constexpr qreal kCentre = kSide / 2;
constexpr qreal kRadius = 0.375 * kSide;
constexpr qreal kDrawWidth = 48;
/// Moves the ends of the arcs under the tips of the arrowheads.
constexpr qreal kShift = 37;

// Measured counter-clockwise from the positive x axis; both arcs run clockwise, each from its first angle to
// the one with the arrowhead.
constexpr qreal kLeftFrom = 4.005530650777334;
constexpr qreal kLeftTo = 2.2776546544022462;
constexpr qreal kRightFrom = 0.8639379981875437;
constexpr qreal kRightTo = 5.419247306992037 - 2 * std::numbers::pi;

qreal Degrees(qreal radians) {
  return radians * 180 / std::numbers::pi;
}

void AddArc(QPainterPath& path, qreal centreX, qreal from, qreal to) {
  const QRectF circle(centreX - kRadius, kCentre - kRadius, 2 * kRadius, 2 * kRadius);
  path.arcMoveTo(circle, Degrees(from));
  path.arcTo(circle, Degrees(from), Degrees(to - from));
}

void AddLine(QPainterPath& path, QPointF from, QPointF to) {
  path.moveTo(from);
  path.lineTo(to);
}

QPainterPath Symbol() {
  QPainterPath path;
  AddArc(path, kCentre + kShift, kLeftFrom, kLeftTo);
  AddArc(path, kCentre - kShift, kRightFrom, kRightTo);
  AddLine(path, {250, 200}, {300, 300});
  AddLine(path, {250, 150}, {130, 280});
  AddLine(path, {580, 650}, {700, 550});
  AddLine(path, {580, 670}, {520, 520});
  return path;
}

}  // namespace

TogglePicture::TogglePicture(QWidget* parent) : QAbstractButton(parent) {
  setObjectName(QStringLiteral("PictToggle"));
  setAccessibleName(tr("Swap the two input files"));
  setToolTip(tr("Swap the two input files"));
  setFocusPolicy(Qt::StrongFocus);
}

void TogglePicture::DrawToggle(bool pressed) {
  raise();
  drawnPressed_ = pressed;
  update();
}

void TogglePicture::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  // What lies below shows through: the picture vanishes into its frame.
  if (!isEnabled()) return;
  painter.fillRect(rect(), palette().color(QPalette::Button));
  painter.setRenderHint(QPainter::Antialiasing);
  painter.save();
  painter.scale(width() / kSide, height() / kSide);
  painter.setPen(QPen(SymbolColour(), kDrawWidth, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
  painter.drawPath(Symbol());
  painter.restore();
  painter.setPen(palette().color(QPalette::Mid));
  painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), 2, 2);
  if (!hasFocus()) return;
  QStyleOptionFocusRect option;
  option.initFrom(this);
  option.rect = rect().adjusted(2, 2, -2, -2);
  style()->drawPrimitive(QStyle::PE_FrameFocusRect, &option, &painter, this);
}

void TogglePicture::keyPressEvent(QKeyEvent* event) {
  if (!IsEnter(*event)) {
    QAbstractButton::keyPressEvent(event);
    return;
  }
  if (!event->isAutoRepeat()) click();
}

QColor TogglePicture::SymbolColour() const {
  return palette().color(drawnPressed_ ? QPalette::Highlight : QPalette::ButtonText);
}

}  // namespace folioweld
