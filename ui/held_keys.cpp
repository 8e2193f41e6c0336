#include "ui/held_keys.h"

#include <QKeyEvent>

namespace folioweld {

bool HeldKeys::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::KeyRelease) {
    const auto* const key = static_cast<const QKeyEvent*>(event);
    releasedKey_ = key->key();
    releasedAt_ = key->timestamp();
  } else if (event->type() == QEvent::KeyPress) {
    const auto* const key = static_cast<const QKeyEvent*>(event);
    if (releasedAt_ != 0 && key->timestamp() == releasedAt_ && key->key() == releasedKey_) return true;
  }
  return QObject::eventFilter(watched, event);
}

}  // namespace folioweld
