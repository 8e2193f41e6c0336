#include "ui/log_window.h"

#include <QCloseEvent>
#include <QScreen>
#include <QVBoxLayout>
#include <utility>

#include "ui/file_names.h"

namespace folioweld {

namespace {

constexpr int kTickMillis = 500;
constexpr int kWidth = 754;
constexpr int kHeight = 220;
constexpr int kLeastHeight = 120;
/// Room for the title bars between two windows.
constexpr int kGap = 40;

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
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(logText_);
  timerLog1_->setObjectName(QStringLiteral("timerLog1"));
  timerLog1_->setInterval(kTickMillis);
  connect(timerLog1_, &QTimer::timeout, this, &LogWindow::timerLog1_Timer);
}

void LogWindow::ShowLog(const QRect& above) {
  if (isVisible()) return;
  ClearLogScreen();
  log_.LogBusy = false;
  log_.LogPainting = false;
  log_.LogShownIndex = log_.LogIndex();
  timerLog1_->start();
  const QRect desk = screen()->availableGeometry();
  const int top = above.bottom() + kGap;
  const int height = qMin(kHeight, desk.bottom() - top);
  if (height >= kLeastHeight) {
    setGeometry(above.left(), top, above.width(), height);
  } else {
    setGeometry(desk.left(), desk.top() + kGap, kWidth, kHeight);
  }
  show();
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
  event->accept();
  if (!unloading_) hide_();
}

}  // namespace folioweld
