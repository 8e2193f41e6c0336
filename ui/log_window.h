#pragma once

#include <QPlainTextEdit>
#include <QTimer>
#include <QWidget>
#include <functional>

#include "engine/activity_log.h"

namespace folioweld {

/// `LogWindow`: shows the activity log's ring, looked at twice a second. One multi-line text box, `logText`,
/// and one timer, `timerLog1`.
class LogWindow : public QWidget {
  Q_OBJECT

 public:
  /// `hide` is called when the user closes the window by its close box.
  LogWindow(ActivityLog& log, std::function<void()> hide);

  /// Loads the window, with an empty log, and shows it without taking the focus; does nothing when it is
  /// shown already. It is placed at or below the bottom edge of `above` where the screen has room there.
  void ShowLog(const QRect& above);
  /// Closes and unloads the window.
  void ExitLogWindow();
  /// Empties the ring and the text box.
  void ClearLogScreen();
  /// One tick of the timer.
  void timerLog1_Timer();

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  void ShowLogText(const std::string& text);

  ActivityLog& log_;
  std::function<void()> hide_;
  QPlainTextEdit* logText_;
  QTimer* timerLog1_;
  bool unloading_ = false;
};

}  // namespace folioweld
