#pragma once

#include <QKeyEvent>
#include <QObject>

namespace folioweld {

/// Either of the two keys that a keyboard has for it.
[[nodiscard]] bool IsEnter(const QKeyEvent& event);

/// Keeps the auto-repeat of Enter and Space from pressing anything.
///
/// An X server repeats a held key as a release and a press with one and the same time stamp. Qt marks the
/// pair as auto-repeat only when the press is there already while it handles the release. Now and then it is
/// not: Enter, held on "CANCEL (abort)", would then press "Exit" as well.
class HeldKeys : public QObject {
  Q_OBJECT

 public:
  /// For the application: takes out the presses that came with the release of the same key.
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  int releasedKey_ = 0;
  quint64 releasedAt_ = 0;  ///< the server's milliseconds; 0 = nothing released yet
};

}  // namespace folioweld
