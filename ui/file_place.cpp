#include "ui/file_place.h"

namespace folioweld {

namespace {

constexpr int kFrameTops[] = {60, 2050, 4000};
constexpr int kButtonWidth = 900;
constexpr int kSelectHeight = 350;
constexpr int kClearHeight = 300;

}  // namespace

FilePlace::FilePlace(const Names& names, QWidget* parent)
    : TitleFrame(names.Caption, parent), index_(names.Index) {
  setObjectName(names.Frame);
  const QString number = QString::number(names.Index);
  txtFileName = new FittingLabel(QStringLiteral("txtFileName") + number,
                                 tr("Name of the %1").arg(names.Purpose), FittingLabel::Lines::Single, this);
  txtDoing = new FittingLabel(QStringLiteral("txtDoing") + number, tr("Status of the %1").arg(names.Purpose),
                              FittingLabel::Lines::Several, this);
  Select = new CaptionButton(names.Select, tr("Select..."), this);
  Select->setAccessibleName(tr("Select... %1").arg(names.Purpose));
  Clear = new CaptionButton(names.Clear, tr("Clear"), this);
  Clear->setAccessibleName(tr("Clear %1").arg(names.Purpose));
}

void FilePlace::Arrange(const TwipGrid& grid) {
  setGeometry(grid.Rect(50, kFrameTops[index_], 11120, 1890));
  txtFileName->setGeometry(grid.Rect(60, 210, 10000, 350));
  txtDoing->setGeometry(grid.Rect(60, 650, 9900, 1000));
  Select->setGeometry(grid.Rect(10110, 210, kButtonWidth, kSelectHeight));
  Clear->setGeometry(grid.Rect(10110, 600, kButtonWidth, kClearHeight));
}

bool FilePlace::Fits(const TwipGrid& grid) const {
  return Select->Fits(Select->text(), grid.Size(kButtonWidth, kSelectHeight)) &&
         Clear->Fits(Clear->text(), grid.Size(kButtonWidth, kClearHeight));
}

}  // namespace folioweld
