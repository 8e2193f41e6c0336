#include "ui/drop_handling.h"

#include <QDragMoveEvent>
#include <QTimer>
#include <QVariant>
#include <QWidget>

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
  const bool path = watched->objectName().startsWith(QLatin1StringView("txtFileName"));
  switch (event->type()) {
    case QEvent::DragEnter:
    case QEvent::DragMove: {
      auto* drag = static_cast<QDropEvent*>(event);
      path ? txtFileName_OLEDragOver(index, drag) : txtDoing_OLEDragOver(index, drag);
      return true;
    }
    case QEvent::DragLeave:
      hooks_.Gone();
      return true;
    case QEvent::Drop: {
      hooks_.Gone();
      auto* drop = static_cast<QDropEvent*>(event);
      path ? txtFileName_OLEDragDrop(index, drop) : txtDoing_OLEDragDrop(index, drop);
      return true;
    }
    default:
      return QObject::eventFilter(watched, event);
  }
}

void DropHandling::OLEDragOver(int index, QDropEvent* event) {
  const DraggedFiles files = FilesOf(event->mimeData());
  hooks_.Over(index, files);
  CheckOLEDragFormat(files, event);
}

/// Of the offered effects only a copy is taken, and nothing but files.
void DropHandling::CheckOLEDragFormat(const DraggedFiles& files, QDropEvent* event) const {
  const bool offered = event->possibleActions().testFlag(Qt::CopyAction);
  const bool taken = offered && hooks_.Allowed() && !files.Paths.empty();
  event->setDropAction(taken ? Qt::CopyAction : Qt::IgnoreAction);
  event->setAccepted(taken);
}

void DropHandling::OLEDragDrop(int index, QDropEvent* event) {
  const DraggedFiles files = FilesOf(event->mimeData());
  // Nothing is moved or copied by us, whatever the other program would do about it.
  event->setDropAction(Qt::IgnoreAction);
  event->accept();
  QTimer::singleShot(
      0, this, [this, index, files, allowed = hooks_.Allowed()] { hooks_.Dropped(index, files, allowed); });
}

}  // namespace folioweld
