#include "ui/caption_button.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QStyleOptionButton>
#include <QStylePainter>
#include <utility>

#include "ui/held_keys.h"

namespace folioweld {

namespace {

/// What the frame takes on each side.
constexpr int kMargin = 3;
constexpr int kTextFlags = Qt::AlignCenter | Qt::TextWordWrap;
/// From the edge to the line that shows the focus.
constexpr qreal kFocusMargin = 3.5;

}  // namespace

CaptionButton::CaptionButton(const QString& controlName, const QString& caption, QWidget* parent)
    : QPushButton(caption, parent) {
  setObjectName(controlName);
  setAutoDefault(false);
  connect(this, &QPushButton::pressed, this, &CaptionButton::TakePress);
}

void CaptionButton::ShowCaption(const QString& caption) {
  setText(caption);
  captionSeen_ = true;
  guard_.invalidate();
}

void CaptionButton::ShowGuardedCaption(const QString& caption) {
  setText(caption);
  captionSeen_ = false;
  guard_.start();
}

void CaptionButton::TakePress() {
  // A press runs what it starts to the end: presses meanwhile have times of their own.
  const quint64 time = std::exchange(eventTime_, 0);
  const bool wasQuick = WasQuick(time, std::exchange(pressTime_, time));
  pressedCaption_ = text();
  pressBelongs_ = !guard_.isValid() || (guard_.hasExpired(QApplication::doubleClickInterval()) && !wasQuick);
  if (!pressBelongs_) guard_.restart();
}

bool CaptionButton::WasQuick(quint64 time, quint64 before) {
  if (time == 0 || before == 0 || time < before) return false;
  return time - before <= static_cast<quint64>(QApplication::doubleClickInterval());
}

bool CaptionButton::Fits(const QString& caption, QSize size) const {
  const QRect room(0, 0, size.width() - 2 * kMargin, size.height() - kMargin);
  const QRect needed = fontMetrics().boundingRect(QRect(0, 0, room.width(), 0), kTextFlags, caption);
  return needed.width() <= room.width() && needed.height() <= room.height();
}

void CaptionButton::paintEvent(QPaintEvent* /*event*/) {
  QStylePainter painter(this);
  QStyleOptionButton option;
  initStyleOption(&option);
  const QString caption = option.text;
  option.text.clear();
  // Styles show the focus and the default button alike.
  option.state &= ~QStyle::State_HasFocus;
  painter.drawControl(QStyle::CE_PushButton, option);
  painter.drawItemText(rect().adjusted(kMargin, 0, -kMargin, 0), kTextFlags, option.palette, isEnabled(),
                       caption, QPalette::ButtonText);
  if (hasFocus()) {
    painter.setPen(QPen(option.palette.color(QPalette::ButtonText), 1, Qt::DotLine));
    painter.drawRect(QRectF(rect()).adjusted(kFocusMargin, kFocusMargin, -kFocusMargin, -kFocusMargin));
  }
  if (captionSeen_) return;
  captionSeen_ = true;
  guard_.restart();
}

void CaptionButton::mousePressEvent(QMouseEvent* event) {
  eventTime_ = event->timestamp();
  QPushButton::mousePressEvent(event);
  eventTime_ = 0;
}

void CaptionButton::keyPressEvent(QKeyEvent* event) {
  if (IsEnter(*event)) {
    // Held down, it presses once.
    if (!event->isAutoRepeat()) PressBy(*event);
    return;
  }
  eventTime_ = event->timestamp();
  QPushButton::keyPressEvent(event);
  eventTime_ = 0;
}

void CaptionButton::PressBy(const QKeyEvent& event) {
  eventTime_ = event.timestamp();
  click();
  eventTime_ = 0;
}

}  // namespace folioweld
