#include "ui/drop_handling.h"

#include <QDragMoveEvent>
#include <QTimer>
#include <QVariant>
#include <QWidget>

#include "ui/dragged_files.h"

namespace folioweld {

namespace {

constexpr char kIndexProperty[] = "dropIndex";

}  // namespace

void DropHandling::Watch(QWidget* widget, int index) {
  widget->setProperty(kIndexProperty, index);
  widget->setAcceptDrops(true);
  widget->installEventFilter(this);
}

bool DropHandling::eventFilter(QObject* watched, QEvent* event) {
  const int index = watched->property(kIndexProperty).toInt();
  switch (event->type()) {
    case QEvent::DragEnter:
    case QEvent::DragMove:
      hooks_.Over(index);
      CheckOLEDragFormat(static_cast<QDropEvent*>(event));
      return true;
    case QEvent::Drop:
      OLEDragDrop(index, static_cast<QDropEvent*>(event));
      return true;
    default:
      return QObject::eventFilter(watched, event);
  }
}

void DropHandling::CheckOLEDragFormat(QDropEvent* event) const {
  const bool offered = event->possibleActions().testFlag(Qt::CopyAction);
  if (offered && hooks_.Allowed() && !DraggedFiles(event->mimeData()).empty()) {
    event->setDropAction(Qt::CopyAction);
    event->accept();
  } else {
    event->setDropAction(Qt::IgnoreAction);
    event->ignore();
  }
}

void DropHandling::OLEDragDrop(int index, QDropEvent* event) {
  const std::vector<std::string> files = DraggedFiles(event->mimeData());
  // Nothing is moved or copied by us, whatever the other program would do about it.
  event->setDropAction(Qt::IgnoreAction);
  event->accept();
  if (!hooks_.Allowed()) return;
  QTimer::singleShot(0, this, [this, index, files] { hooks_.Dropped(index, files); });
}

}  // namespace folioweld
