#include "ui/caption_button.h"

#include <QKeyEvent>
#include <QStyleOptionButton>
#include <QStylePainter>

namespace folioweld {

namespace {

/// What the frame takes on each side.
constexpr int kMargin = 3;
constexpr int kTextFlags = Qt::AlignCenter | Qt::TextWordWrap;

}  // namespace

CaptionButton::CaptionButton(const QString& controlName, const QString& caption, QWidget* parent)
    : QPushButton(caption, parent) {
  setObjectName(controlName);
  setAutoDefault(false);
  connect(this, &QPushButton::pressed, this, [this] {
    if (!secondClick_) pressedCaption_ = text();
  });
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
  painter.drawControl(QStyle::CE_PushButton, option);
  painter.drawItemText(rect().adjusted(kMargin, 0, -kMargin, 0), kTextFlags, option.palette, isEnabled(),
                       caption, QPalette::ButtonText);
}

void CaptionButton::keyPressEvent(QKeyEvent* event) {
  // Enter belongs to the default button, which the window knows; a key held down presses nothing twice.
  if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
    event->ignore();
    return;
  }
  QPushButton::keyPressEvent(event);
}

void CaptionButton::mouseDoubleClickEvent(QMouseEvent* event) {
  secondClick_ = true;
  QPushButton::mouseDoubleClickEvent(event);
  secondClick_ = false;
}

}  // namespace folioweld
