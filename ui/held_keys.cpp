#include "ui/held_keys.h"

namespace folioweld {

namespace {

/// Only the keys that press buttons: a program that types for a person may well type two letters at one time.
bool PressesButtons(const QKeyEvent& event) {
  return IsEnter(event) || event.key() == Qt::Key_Space;
}

}  // namespace

bool IsEnter(const QKeyEvent& event) {
  return event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter;
}

bool HeldKeys::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::KeyRelease) {
    const auto* const key = static_cast<const QKeyEvent*>(event);
    releasedKey_ = key->key();
    releasedAt_ = key->timestamp();
  } else if (event->type() == QEvent::KeyPress) {
    const auto* const key = static_cast<const QKeyEvent*>(event);
    const bool again = releasedAt_ != 0 && key->timestamp() == releasedAt_ && key->key() == releasedKey_;
    if (again && PressesButtons(*key)) return true;
  }
  return QObject::eventFilter(watched, event);
}

}  // namespace folioweld
