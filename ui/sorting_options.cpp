#include "ui/sorting_options.h"

#include <QButtonGroup>
#include <QKeyEvent>
#include <QScreen>
#include <QStyle>
#include <QStyleOptionButton>
#include <algorithm>

namespace folioweld {

namespace {

struct OptionDesign {
  const char* Caption;
  std::int16_t Value;
  bool InFrame;
  int Left, Top, Width;
};

constexpr int kOptionHeight = 405;
constexpr OptionDesign kOptions[] = {
    {"lexical ordering of file names", 1, true, 165, 270, 3135},
    {"reverse lexical ordering of file names", -1, false, 285, 1230, 3030},
    {"last modification date and  time", 2, true, 165, 1005, 3045},
    {"last modification date and time (reversed)", -2, false, 285, 1965, 3465},
};

const OptionDesign& Design(int index) {
  return kOptions[static_cast<std::size_t>(index)];
}

}  // namespace

SortingOptions::SortingOptions(QWidget* parent) : QDialog(parent) {
  setObjectName(QStringLiteral("SortingOptions"));
  setWindowTitle(tr("Directory merge sorting option"));
  label1_ = new QLabel(tr("Please specify your sorting option for directory merge"), this);
  label1_->setObjectName(QStringLiteral("Label1"));
  label1_->setWordWrap(true);
  frame1_ = new TitleFrame(tr(" Sort files according to: "), this);
  frame1_->setObjectName(QStringLiteral("Frame1"));
  auto* group = new QButtonGroup(this);
  for (int index = 0; index < 4; ++index) {
    QWidget* container = Design(index).InFrame ? static_cast<QWidget*>(frame1_) : this;
    auto* option = new QRadioButton(tr(Design(index).Caption), container);
    option->setObjectName(QStringLiteral("Option1") + QString::number(index));
    // Qt makes options exclusive by parent; these four have two.
    group->addButton(option);
    option->installEventFilter(this);
    connect(option, &QRadioButton::clicked, this, [this, index] { Option1_Click(index); });
    option1_[static_cast<std::size_t>(index)] = option;
  }
  cmdOK_ = new CaptionButton(QStringLiteral("cmdOK"), tr("I choose this option"), this);
  cmdCancel_ = new CaptionButton(QStringLiteral("cmdCancel"), tr("Cancel"), this);
  cmdOK_->setDefault(true);
  connect(cmdOK_, &QPushButton::clicked, this, &SortingOptions::cmdOK_Click);
  connect(cmdCancel_, &QPushButton::clicked, this, &SortingOptions::cmdCancel_Click);
  for (std::size_t i = 1; i < option1_.size(); ++i) setTabOrder(option1_[i - 1], option1_[i]);
  setTabOrder(option1_.back(), cmdOK_);
  setTabOrder(cmdOK_, cmdCancel_);
  Form_Load();
}

void SortingOptions::Form_Load() {
  activated_ = false;
  Arrange();
}

void SortingOptions::SetSortOption(std::int16_t value) {
  sorting_ = value;
  for (int index = 0; index < 4; ++index) {
    if (Design(index).Value == value) sortIndex_ = index;
  }
  Option1_Click(sortIndex_);
  option1_[static_cast<std::size_t>(sortIndex_)]->setFocus();
}

void SortingOptions::Option1_Click(int index) {
  sortIndex_ = index;
  // The group unchecks the others, and no click comes of that.
  option1_[static_cast<std::size_t>(index)]->setChecked(true);
}

void SortingOptions::cmdOK_Click() {
  sorting_ = Design(sortIndex_).Value;
  accept();
}

void SortingOptions::cmdCancel_Click() {
  reject();
}

void SortingOptions::showEvent(QShowEvent* event) {
  QDialog::showEvent(event);
  Form_Activate();
}

void SortingOptions::Form_Activate() {
  if (activated_) return;
  activated_ = true;
  QRect place(QPoint(), frameGeometry().size());
  place.moveCenter(screen()->geometry().center());
  move(place.topLeft());
}

void SortingOptions::changeEvent(QEvent* event) {
  QDialog::changeEvent(event);
  if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) Arrange();
}

bool SortingOptions::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() != QEvent::KeyPress) return QDialog::eventFilter(watched, event);
  const int key = static_cast<QKeyEvent*>(event)->key();
  const int step = key == Qt::Key_Down || key == Qt::Key_Right ? 1
                   : key == Qt::Key_Up || key == Qt::Key_Left  ? 3
                                                               : 0;
  if (step == 0) return QDialog::eventFilter(watched, event);
  // Qt's arrow keys would stay among the options of one parent.
  for (int index = 0; index < 4; ++index) {
    if (option1_[static_cast<std::size_t>(index)] != watched) continue;
    QRadioButton* next = option1_[static_cast<std::size_t>((index + step) % 4)];
    next->setFocus(Qt::TabFocusReason);
    next->click();
    break;
  }
  return true;
}

void SortingOptions::Arrange() {
  const TwipGrid grid = TwipGrid::Fitting([this](const TwipGrid& tried) { return Fits(tried); });
  label1_->setGeometry(grid.Rect(90, 150, 4140, 405));
  frame1_->setGeometry(grid.Rect(120, 600, 4455, 1920));
  for (int index = 0; index < 4; ++index) {
    const OptionDesign& design = Design(index);
    option1_[static_cast<std::size_t>(index)]->setGeometry(
        grid.Rect(design.Left, design.Top, design.Width, kOptionHeight));
    option1_[static_cast<std::size_t>(index)]->raise();
  }
  cmdOK_->setGeometry(grid.Rect(4665, 750, 1695, 1740));
  cmdCancel_->setGeometry(grid.Rect(4665, 135, 1710, 420));
  setFixedSize(grid.Size(6480, 2655));
}

bool SortingOptions::Fits(const TwipGrid& grid) const {
  const QSize label = grid.Size(4140, 405);
  const QRect needed =
      label1_->fontMetrics().boundingRect(QRect(0, 0, label.width(), 0), Qt::TextWordWrap, label1_->text());
  if (needed.height() > label.height()) return false;
  for (int index = 0; index < 4; ++index) {
    const QSize option = option1_[static_cast<std::size_t>(index)]->sizeHint();
    if (option.width() > grid.Pixels(Design(index).Width) || option.height() > grid.Pixels(kOptionHeight))
      return false;
  }
  return cmdOK_->Fits(cmdOK_->text(), grid.Size(1695, 1740)) &&
         cmdCancel_->Fits(cmdCancel_->text(), grid.Size(1710, 420));
}

}  // namespace folioweld
