#include "ui/fitting_label.h"

#include <QPainter>
#include <QTextOption>

namespace folioweld {

namespace {

constexpr int kSmallestPercent = 75;
constexpr int kPercentStep = 5;

/// Line ends as the toolkit knows them.
QString WithPlainLineEnds(QString text) {
  return text.remove(u'\r');
}

}  // namespace

FittingLabel::FittingLabel(const QString& controlName, const QString& purpose, Lines lines, QWidget* parent)
    : QLabel(parent), purpose_(purpose), lines_(lines) {
  setObjectName(controlName);
  setTextFormat(Qt::PlainText);
  setAccessibleName(purpose);
}

void FittingLabel::SetCaption(const QString& caption) {
  if (caption == text()) return;
  setText(caption);
  setAccessibleName(
      caption.isEmpty() ? purpose_ : purpose_ + QStringLiteral(": ") + WithPlainLineEnds(caption).trimmed());
}

void FittingLabel::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  painter.setPen(palette().color(foregroundRole()));
  if (lines_ == Lines::Single) {
    PaintSingle(painter);
  } else {
    PaintSeveral(painter);
  }
}

void FittingLabel::PaintSingle(QPainter& painter) {
  int percent = 100;
  while (percent > kSmallestPercent && QFontMetrics(Smaller(percent)).horizontalAdvance(text()) > width()) {
    percent -= kPercentStep;
  }
  painter.setFont(Smaller(percent));
  painter.drawText(rect(), Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                   painter.fontMetrics().elidedText(text(), Qt::ElideMiddle, width()));
}

void FittingLabel::PaintSeveral(QPainter& painter) {
  QString shown = WithPlainLineEnds(text());
  // The end of the last line needs no room of its own.
  while (shown.endsWith(u'\n')) shown.chop(1);
  QTextOption option(Qt::AlignLeft | Qt::AlignTop);
  option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
  QRectF needed;
  for (int percent = 100; percent >= kSmallestPercent; percent -= kPercentStep) {
    painter.setFont(Smaller(percent));
    needed = painter.boundingRect(QRectF(0, 0, width(), 0), shown, option);
    if (needed.height() <= height()) break;
  }
  QRectF place(0, 0, width(), qMax<qreal>(needed.height(), height()));
  // The end of the text is what happens now.
  place.moveBottom(height());
  painter.drawText(place, shown, option);
}

QFont FittingLabel::Smaller(int percent) const {
  QFont smaller = font();
  if (percent == 100) return smaller;
  if (smaller.pointSizeF() > 0) {
    smaller.setPointSizeF(smaller.pointSizeF() * percent / 100);
  } else {
    smaller.setPixelSize(qMax(1, smaller.pixelSize() * percent / 100));
  }
  return smaller;
}

}  // namespace folioweld
