#include "ui/log_window.h"

#include <QCloseEvent>
#include <QScreen>
#include <utility>

#include "ui/file_names.h"
#include "ui/log_place.h"

namespace folioweld {

namespace {

constexpr int kTickMillis = 500;
constexpr QSize kUsualFrame(4, 40);

}  // namespace

LogWindow::LogWindow(ActivityLog& log, std::function<void()> hide)
    : log_(log), hide_(std::move(hide)), logText_(new QPlainTextEdit(this)), timerLog1_(new QTimer(this)) {
  setObjectName(QStringLiteral("LogWindow"));
  setWindowTitle(tr("Folioweld - Log"));
  setAttribute(Qt::WA_ShowWithoutActivating);
  logText_->setObjectName(QStringLiteral("logText"));
  logText_->setAccessibleName(tr("Activity log"));
  logText_->setReadOnly(true);
  // A read-only box takes the focus all the same, so that the log can be scrolled and copied by keyboard.
  logText_->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  logText_->setTabChangesFocus(true);
  setCentralWidget(logText_);
  timerLog1_->setObjectName(QStringLiteral("timerLog1"));
  timerLog1_->setInterval(kTickMillis);
  connect(timerLog1_, &QTimer::timeout, this, &LogWindow::timerLog1_Timer);
}

void LogWindow::ShowLog(const QMainWindow& mainWindow) {
  if (isVisible()) {
    setWindowState(windowState() & ~Qt::WindowMinimized);
    raise();
    return;
  }
  ClearLogScreen();
  log_.LogBusy = false;
  log_.LogPainting = false;
  log_.LogShownIndex = log_.LogIndex();
  timerLog1_->start();
  if (lastPlace_.isNull()) {
    PlaceBeside(mainWindow);
  } else {
    move(lastPlace_.topLeft());
    resize(lastPlace_.size());
  }
  setWindowState(windowState() & ~Qt::WindowMinimized);
  show();
}

void LogWindow::PlaceBeside(const QMainWindow& mainWindow) {
  if (!lastPlace_.isNull() || (!firstPlace_.isNull() && QRect(pos(), size()) != firstPlace_)) return;
  // Both windows have the same kind of frame, which may not be known yet.
  QSize frame = mainWindow.frameGeometry().size() - mainWindow.size();
  if (frame.isNull()) frame = kUsualFrame;
  const QRect place = LogPlace(mainWindow.screen()->availableGeometry(),
                               {mainWindow.frameGeometry().topLeft(), mainWindow.size() + frame});
  move(place.topLeft());
  resize(place.size() - frame);
  firstPlace_ = QRect(place.topLeft(), size());
}

void LogWindow::ExitLogWindow() {
  unloading_ = true;
  timerLog1_->stop();
  close();
  unloading_ = false;
}

void LogWindow::ClearLogScreen() {
  log_.ClearLogScreen();
  ShowLogText(log_.LogText());
}

void LogWindow::timerLog1_Timer() {
  log_.Tick([this](const std::string& text) { ShowLogText(text); });
}

void LogWindow::ShowLogText(const std::string& text) {
  log_.LogBusy = true;
  logText_->setPlainText(ShownLog(text));
  logText_->moveCursor(QTextCursor::End);
  logText_->ensureCursorVisible();
  log_.LogBusy = false;
}

void LogWindow::closeEvent(QCloseEvent* event) {
  lastPlace_ = QRect(pos(), size());
  event->accept();
  if (!unloading_) hide_();
}

}  // namespace folioweld
