#include "ui/main_window.h"

#include <QApplication>
#include <QCloseEvent>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QLayout>
#include <QScreen>
#include <QScrollArea>
#include <QSessionManager>
#include <QShortcut>
#include <QSocketNotifier>
#include <QStyle>
#include <utility>

#include "dirmerge/start_settings.h"
#include "ui/file_names.h"
#include "ui/held_keys.h"

namespace folioweld {

namespace {

constexpr int kCollectMillis = 500;
constexpr char kTitle[] = "Folioweld (version " FOLIOWELD_VERSION ")";
// The design's client area, in twips.
constexpr int kClientWidth = 11310;
constexpr int kClientHeight = 6840;
/// What a window manager puts around the window at most.
constexpr int kFrameWidth = 12;
constexpr int kFrameHeight = 40;
constexpr int kSmallestFont = 8;  ///< in pixels

QString Name(const char* controlName) {
  return QString::fromLatin1(controlName);
}

}  // namespace

Folioweld::Folioweld(WindowsAPI& system, Dialogs& dialogs, ViewerDesktop& desktop, Arguments arguments)
    : EndProgram([](int status) { QCoreApplication::exit(status); }),
      arguments_(std::move(arguments)),
      system_(system),
      dialogs_(dialogs),
      shell_(system, *this),
      log_(shell_),
      files_(system),
      settings_(system),
      job_(program_.Merge, files_, shell_, log_),
      directoryMerge_(program_, files_, settings_, shell_, log_),
      tmpDirectory_(system, settings_, shell_),
      viewer_(system, desktop),
      menus_(menuBar()),
      logWindow_(log_, [this] { MnuLogHide_Click(); }),
      drops_({[this] { return TakesDrops(); },
              [this](int index, const DraggedFiles& files) { ShowDrag(index, files); },
              [this] {
                for (FilePlace* place : places_) place->ShowMarked(false);
              },
              [this](int index, const DraggedFiles& files, bool allowed) {
                ProcessOLEDragDrop(index, files, allowed);
              }}) {
  program_.CommandLine = arguments_.Text;
  files_.SetLog(&log_);
  setObjectName(QStringLiteral("Folioweld"));
  // Neither resized nor maximised.
  setWindowFlags(Qt::Window | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowSystemMenuHint |
                 Qt::WindowMinimizeButtonHint | Qt::WindowCloseButtonHint);
  BuildControls();
  ConnectControls();
  ConnectMenus();
  SetTabOrder();
  Arrange();
  CatchSystemEnd();
  QCoreApplication::instance()->installEventFilter(&heldKeys_);
  viewerCollector_.setInterval(kCollectMillis);
  connect(&viewerCollector_, &QTimer::timeout, this, [this] {
    if (!viewer_.CollectEnded()) viewerCollector_.stop();
  });
}

Folioweld::~Folioweld() {
  logWindow_.ExitLogWindow();
}

void Folioweld::BuildControls() {
  client_ = new QWidget(this);
  setCentralWidget(client_);
  const FilePlace::Names names[] = {{0, Name("frameFileIn1"), tr("1st input file "), Name("cmdInput1"),
                                     Name("CmdClr1"), tr("1st input file")},
                                    {1, Name("frameFileIn2"), tr("2nd input file"), Name("cmdInput2"),
                                     Name("CmdClr2"), tr("2nd input file")},
                                    {2, Name("frameFileOut"), tr("Output (result) file"), Name("cmdOutput"),
                                     Name("CmdClrOut"), tr("output file")}};
  for (std::size_t i = 0; i < places_.size(); ++i) {
    places_[i] = new FilePlace(names[i], client_);
    for (QWidget* target : {static_cast<QWidget*>(places_[i]), static_cast<QWidget*>(places_[i]->txtFileName),
                            static_cast<QWidget*>(places_[i]->txtDoing)}) {
      drops_.Watch(target, static_cast<int>(i));
    }
  }
  drops_.Watch(this, -1);
  pictToggle_ = new TogglePicture(places_[0]);
  cmdOK_ = new CaptionButton(Name("cmdOK"), tr("Go! (launch PDF merge)"), client_);
  cmdCancel_ = new CaptionButton(Name("cmdCancel"), tr("Exit"), client_);
}

void Folioweld::ConnectControls() {
  using Handler = void (Folioweld::*)();
  const std::pair<QAbstractButton*, Handler> clicks[] = {
      {places_[0]->Select, &Folioweld::cmdInput1_Click}, {places_[1]->Select, &Folioweld::cmdInput2_Click},
      {places_[2]->Select, &Folioweld::cmdOutput_Click}, {places_[0]->Clear, &Folioweld::CmdClr1_Click},
      {places_[1]->Clear, &Folioweld::CmdClr2_Click},    {places_[2]->Clear, &Folioweld::CmdClrOut_Click},
      {pictToggle_, &Folioweld::PictToggle_Click},       {cmdOK_, &Folioweld::cmdOK_Click}};
  for (const auto& [button, handler] : clicks) connect(button, &QAbstractButton::clicked, this, handler);
  connect(cmdCancel_, &QAbstractButton::clicked, this, [this] {
    // A press meant for "CANCEL (abort)" must not end the program when the job ended in between.
    if (cmdCancel_->PressBelongsToCaption()) cmdCancel_Click();
  });
  connect(pictToggle_, &QAbstractButton::pressed, this, &Folioweld::PictToggle_MouseDown);
  connect(pictToggle_, &QAbstractButton::released, this, &Folioweld::PictToggle_MouseUp);
  auto* menuKey = new QShortcut(Qt::Key_F10, this);
  connect(menuKey, &QShortcut::activated, this, [this] {
    menuBar()->setFocus(Qt::MenuBarFocusReason);
    menuBar()->setActiveAction(menus_.MenuFile0->menuAction());
  });
}

void Folioweld::ConnectMenus() {
  using Handler = void (Folioweld::*)();
  const std::pair<QAction*, Handler> clicks[] = {
      {menus_.MenuPdfMergeDir, &Folioweld::MenuPdfMergeDir_Click},
      {menus_.MenuFilExit, &Folioweld::MenuFilExit_Click},
      {menus_.MenuSortLexical, &Folioweld::MenuSortLexical_Click},
      {menus_.MenuSortLexicalRev, &Folioweld::MenuSortLexicalRev_Click},
      {menus_.MenuSortByDate, &Folioweld::MenuSortByDate_Click},
      {menus_.MenuSortByDateRev, &Folioweld::MenuSortByDateRev_Click},
      {menus_.MnuLogShow, &Folioweld::MnuLogShow_Click},
      {menus_.MnuLogHide, &Folioweld::MnuLogHide_Click},
      {menus_.MenuOptViewYes, &Folioweld::MenuOptViewYes_Click},
      {menus_.MenuOptViewNo, &Folioweld::MenuOptViewNo_Click},
      {menus_.MenuTmp0, &Folioweld::MenuTmp0_Click},
      {menus_.MenuDefaultTmp0, &Folioweld::MenuDefaultTmp0_Click},
      {menus_.MenuAboutFolioweld, &Folioweld::MenuAboutFolioweld_Click},
      {menus_.MenuVarnel, &Folioweld::MenuVarnel_Click},
      {menus_.MenuPdfReader, &Folioweld::MenuPdfReader_Click}};
  for (const auto& [item, handler] : clicks) connect(item, &QAction::triggered, this, handler);
}

void Folioweld::SetTabOrder() {
  QWidget* const order[] = {places_[0]->Select, places_[0]->Clear,  pictToggle_,       places_[1]->Select,
                            places_[1]->Clear,  places_[2]->Select, places_[2]->Clear, cmdOK_,
                            cmdCancel_};
  for (std::size_t i = 1; i < std::size(order); ++i) setTabOrder(order[i - 1], order[i]);
}

bool Folioweld::Fits(const TwipGrid& grid) const {
  for (const FilePlace* place : places_) {
    if (!place->Fits(grid)) return false;
  }
  for (const QString& caption : {tr("Exit"), tr("CANCEL (abort)"), tr("Close display window")}) {
    if (!cmdCancel_->Fits(caption, grid.Size(1065, 700))) return false;
  }
  return cmdOK_->Fits(cmdOK_->text(), grid.Size(10000, 700));
}

/// What the screen leaves for the client area.
QSize Folioweld::RoomForClient() const {
  const QSize desk = screen()->availableGeometry().size();
  return desk - QSize(kFrameWidth, kFrameHeight + menuBar()->sizeHint().height());
}

/// The window grows with the font until every caption fits. On a screen that is too small for that the font
/// gets smaller instead, and on one that is too small for the design the client area scrolls.
void Folioweld::Arrange() {
  const QSize room = RoomForClient();
  const double largest = qMax(1.0, TwipGrid::kTwipsPerPixel * qMin(room.width() / double{kClientWidth},
                                                                   room.height() / double{kClientHeight}));
  QFont font = this->font();
  client_->setFont(font);
  TwipGrid grid = TwipGrid::Fitting([this](const TwipGrid& tried) { return Fits(tried); }, largest);
  for (int pixels = QFontInfo(font).pixelSize() - 1; !Fits(grid) && pixels >= kSmallestFont; --pixels) {
    font.setPixelSize(pixels);
    client_->setFont(font);
  }
  for (FilePlace* place : places_) place->Arrange(grid);
  pictToggle_->setGeometry(grid.Rect(10140, 990, 825, 825));
  cmdOK_->setGeometry(grid.Rect(60, 6000, 10000, 700));
  cmdCancel_->setGeometry(grid.Rect(10100, 6000, 1065, 700));
  client_->setFixedSize(grid.Size(kClientWidth, kClientHeight));
  ScrollWhereNeeded(room);
  layout()->setSizeConstraint(QLayout::SetFixedSize);
}

void Folioweld::ScrollWhereNeeded(QSize room) {
  const QSize size = client_->size();
  if (size.width() <= room.width() && size.height() <= room.height() && centralWidget() == client_) return;
  auto* scroll = qobject_cast<QScrollArea*>(centralWidget());
  if (scroll == nullptr) {
    scroll = new QScrollArea(this);
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setFocusPolicy(Qt::NoFocus);
    takeCentralWidget();
    scroll->setWidget(client_);
    setCentralWidget(scroll);
    connect(qApp, &QApplication::focusChanged, scroll, [this, scroll](QWidget* /*before*/, QWidget* now) {
      if (now != client_ && client_->isAncestorOf(now)) scroll->ensureWidgetVisible(now);
    });
  }
  const int bar = scroll->style()->pixelMetric(QStyle::PM_ScrollBarExtent);
  const bool high = size.height() > room.height();
  const bool wide = size.width() > room.width() - (high ? bar : 0);
  scroll->setFixedSize(qMin(size.width() + (high ? bar : 0), room.width()),
                       qMin(size.height() + (wide ? bar : 0), room.height()));
}

void Folioweld::CentreOnScreen() {
  QRect place(QPoint(), QSize(DesignWidth, DesignHeight) / TwipGrid::kTwipsPerPixel);
  place.moveCenter(screen()->geometry().center());
  // The frame may not be known yet.
  const QRect desk = screen()->availableGeometry();
  const int lowest = desk.bottom() + 1 - kFrameHeight - height();
  move(place.left(), qMax(desk.top(), qMin(place.top(), lowest)));
}

void Folioweld::CatchSystemEnd() {
  connect(qGuiApp, &QGuiApplication::commitDataRequest, this, [this](QSessionManager&) { EndBySystem(); });
  // A signal that cannot be caught still ends the program, only without the clean-up.
  static_cast<void>(system_.CatchStopSignals(StopRule::Remember));
  const WindowsAPI::Handle handle = system_.StopSignalHandle();
  if (handle < 0) return;
  auto* notifier = new QSocketNotifier(handle, QSocketNotifier::Read, this);
  connect(notifier, &QSocketNotifier::activated, this, [this, notifier] {
    notifier->setEnabled(false);
    EndBySystem();
  });
}

void Folioweld::Start() {
  Form_Load();
  show();
  QTimer::singleShot(0, this, [this] {
    if (!activated_) Form_Activate();
  });
}

void Folioweld::Form_Load() {
  MergeState& merge = program_.Merge;
  merge.MergeStatus = 2;
  adjustSize();
  DesignWidth = frameGeometry().width() * TwipGrid::kTwipsPerPixel;
  DesignHeight = frameGeometry().height() * TwipGrid::kTwipsPerPixel;
  // Placed before the log window, which takes its place from it.
  CentreOnScreen();
  setWindowTitle(QString::fromLatin1(kTitle));
  ReadStartSettings(program_, settings_);
  UpdateSortMenu();
  ApplyLogWindowOption();
  menus_.MenuOptViewYes->setChecked(merge.ShowOutputAfterMerge);
  menus_.MenuOptViewNo->setChecked(!merge.ShowOutputAfterMerge);
  merge.SilentMode = false;
  places_[0]->Select->setEnabled(true);
  places_[0]->Select->setFocus();
  RefreshControls();
  ResetSlots();
  ReaderPath = viewer_.FindPdfReader();
  ReaderAvailable = !ReaderPath.empty();
  program_.ExternalBusy = false;
}

void Folioweld::Form_Activate() {
  if (activated_) {
    RefreshControls();
    return;
  }
  activated_ = true;
  DesignWidth = frameGeometry().width() * TwipGrid::kTwipsPerPixel;
  DesignHeight = frameGeometry().height() * TwipGrid::kTwipsPerPixel;
  CentreOnScreen();
  if (program_.Merge.LogEnabled) logWindow_.PlaceBeside(*this);
  logWindow_.ClearLogScreen();
  program_.Merge.MergeStatus = 2;
  TakeChoices(arguments_, program_);
  LogCommandLine(program_, log_);
  settings_.TellTo([this](const std::string& line) {
    if (program_.Merge.LogEnabled) log_.AddLogLine(line);
  });
  RunCommandLine();
  if (ending_) return;
  RefreshControls();
  pictToggle_->DrawToggle(false);
  menus_.MenuOptViewOutput->setEnabled(ReaderAvailable);
  if (!ReaderAvailable) program_.Merge.ShowOutputAfterMerge = false;
}

void Folioweld::RunCommandLine() {
  if (ProcessCommandLine(arguments_, program_, files_, settings_, directoryMerge_) !=
      CommandLineOutcome::Done) {
    FinishIfEnding();
    return;
  }
  exitStatus_ = StatusOf(directoryMerge_.Report());
  ending_ = true;
  Finish();
}

void Folioweld::Form_Resize() {
  if (!activated_ || !(windowState() & (Qt::WindowMaximized | Qt::WindowFullScreen))) return;
  setWindowState(windowState() & ~(Qt::WindowMaximized | Qt::WindowFullScreen));
}

bool Folioweld::event(QEvent* event) {
  if (event->type() == QEvent::WindowActivate && activated_) Form_Activate();
  return QMainWindow::event(event);
}

void Folioweld::changeEvent(QEvent* event) {
  QMainWindow::changeEvent(event);
  if (event->type() == QEvent::WindowStateChange) Form_Resize();
  const bool rebuilt = event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange;
  if (rebuilt && cmdCancel_ != nullptr) Arrange();
}

/// Enter, when no button has the focus.
void Folioweld::keyPressEvent(QKeyEvent* event) {
  if (!IsEnter(*event)) {
    QMainWindow::keyPressEvent(event);
    return;
  }
  if (event->isAutoRepeat()) return;
  for (CaptionButton* button : {cmdOK_, cmdCancel_}) {
    if (!button->isDefault() || !button->isEnabled()) continue;
    button->PressBy(*event);
    return;
  }
}

}  // namespace folioweld
