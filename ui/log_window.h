#pragma once

#include <QMainWindow>
#include <QPlainTextEdit>
#include <QTimer>
#include <functional>

#include "engine/activity_log.h"

namespace folioweld {

/// `LogWindow`: shows the activity log's ring, looked at twice a second. One multi-line text box, `logText`,
/// and one timer, `timerLog1`.
class LogWindow : public QMainWindow {
  Q_OBJECT

 public:
  /// `hide` is called when the user closes the window by its close box.
  LogWindow(ActivityLog& log, std::function<void()> hide);

  /// Loads the window, with an empty log, and shows it without taking the focus: where it was before it was
  /// hidden, and at first beside the main window. Brings one that is shown already to the front.
  void ShowLog(const QMainWindow& mainWindow);
  /// Moves it to its first place, as long as nobody has moved it.
  void PlaceBeside(const QMainWindow& mainWindow);
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
  QRect firstPlace_;  ///< given by `PlaceBeside`: position of the frame, size without it
  QRect lastPlace_;   ///< the same when the window was hidden; null = not yet
};

}  // namespace folioweld
