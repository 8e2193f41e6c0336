#pragma once

#include <QDropEvent>
#include <QObject>
#include <functional>

#include "ui/dragged_files.h"

namespace folioweld {

/// Drags of files over the window and its places, and their drops.
class DropHandling : public QObject {
  Q_OBJECT

 public:
  struct Hooks {
    /// Whether drops are taken at all now.
    std::function<bool()> Allowed;
    /// A drag is over place 0, 1 or 2, or over the rest of the window (-1).
    std::function<void(int index, const DraggedFiles& files)> Over;
    /// It went away, or was dropped.
    std::function<void()> Gone;
    /// Called from the event loop and not from within the drop, so that the other program need not wait for a
    /// merge. `allowed` is of the moment of the drop.
    std::function<void(int index, const DraggedFiles& files, bool allowed)> Dropped;
  };

  explicit DropHandling(Hooks hooks) : hooks_(std::move(hooks)) {}

  /// Has the widget take drops for the index.
  void Watch(QWidget* widget, int index);

  bool eventFilter(QObject* watched, QEvent* event) override;

  // Of the labels; the rest of a place and of the window does what the status labels do.
  void txtFileName_OLEDragOver(int index, QDropEvent* event) { OLEDragOver(index, event); }
  void txtFileName_OLEDragDrop(int index, QDropEvent* event) { OLEDragDrop(index, event); }
  void txtDoing_OLEDragOver(int index, QDropEvent* event) { OLEDragOver(index, event); }
  void txtDoing_OLEDragDrop(int index, QDropEvent* event) { OLEDragDrop(index, event); }

 private:
  void OLEDragOver(int index, QDropEvent* event);
  void OLEDragDrop(int index, QDropEvent* event);
  void CheckOLEDragFormat(const DraggedFiles& files, QDropEvent* event) const;

  Hooks hooks_;
};

}  // namespace folioweld
