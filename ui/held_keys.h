#pragma once

#include <QObject>

namespace folioweld {

/// Keeps the repetitions of Enter or Space, held down, from looking like presses of their own.
///
/// An X server repeats a key as a release and a press at one and the same time. Qt knows a repetition only
/// when the press has arrived by the time that it handles the release, so now and then one gets through as a
/// new press: Enter, held on "CANCEL (abort)", would then press "Exit" as well.
class HeldKeys : public QObject {
  Q_OBJECT

 public:
  /// Takes such presses out of everything that the application is sent.
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  int releasedKey_ = 0;
  quint64 releasedAt_ = 0;  ///< in the screen's own milliseconds; 0 = nothing released yet
};

}  // namespace folioweld
