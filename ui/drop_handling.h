#pragma once

#include <QDropEvent>
#include <QObject>
#include <QPointer>
#include <array>
#include <functional>
#include <string>
#include <vector>

namespace folioweld {

/// Drags of files over the window and its places, and their drops.
class DropHandling : public QObject {
  Q_OBJECT

 public:
  struct Hooks {
    /// Whether a drop would be taken at all.
    std::function<bool()> Allowed;
    /// A drag is over the place 0, 1 or 2, or over the rest of the window (-1).
    std::function<void(int index)> Over;
    /// Called from the event loop, not from within the drop, so that the other program need not wait for a
    /// merge.
    std::function<void(int index, const std::vector<std::string>& files)> Dropped;
  };

  explicit DropHandling(Hooks hooks) : hooks_(std::move(hooks)) {}

  /// Has the widget take drops for the index.
  void Watch(QWidget* widget, int index);

  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  /// Of the offered effects only a copy is taken, and nothing but files.
  void CheckOLEDragFormat(QDropEvent* event) const;
  void OLEDragDrop(int index, QDropEvent* event);

  Hooks hooks_;
};

}  // namespace folioweld
