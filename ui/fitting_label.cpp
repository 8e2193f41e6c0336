#include "ui/fitting_label.h"

#include <QPainter>
#include <QPixmap>
#include <QTextDocument>
#include <QTextOption>

namespace folioweld {

namespace {

/// Broken between words, and within one that is longer than a line.
QTextOption Wrapped() {
  QTextOption option(Qt::AlignLeft | Qt::AlignTop);
  option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
  return option;
}

/// Line ends as the toolkit knows them.
QString WithPlainLineEnds(QString text) {
  return text.remove(u'\r');
}

/// As a tooltip shows it: the toolkit would take some names for its markup.
QString AsToolTip(const QString& text) {
  if (!Qt::mightBeRichText(text)) return text;
  return QStringLiteral("<span style=\"white-space:pre-wrap\">") + text.toHtmlEscaped() +
         QStringLiteral("</span>");
}

}  // namespace

FittingLabel::FittingLabel(const QString& controlName, const QString& purpose, Lines lines, QWidget* parent)
    : QLabel(parent), purpose_(purpose), lines_(lines) {
  setObjectName(controlName);
  setTextFormat(Qt::PlainText);
  setAccessibleName(purpose);
}

void FittingLabel::SetCaption(const QString& caption, const QString& whole) {
  const QString all = whole.isEmpty() ? caption : whole;
  if (caption == text() && all == whole_) return;
  setText(caption);
  whole_ = all;
  setAccessibleName(
      caption.isEmpty() ? purpose_ : purpose_ + QStringLiteral(": ") + WithPlainLineEnds(caption).trimmed());
  RefreshToolTip();
}

void FittingLabel::resizeEvent(QResizeEvent* event) {
  QLabel::resizeEvent(event);
  RefreshToolTip();
}

void FittingLabel::RefreshToolTip() {
  const bool fits = lines_ == Lines::Single ? fontMetrics().horizontalAdvance(text()) <= width()
                                            : NeededHeight() <= height();
  const QString tip = fits && whole_ == text() ? QString() : WithPlainLineEnds(whole_).trimmed();
  setToolTip(AsToolTip(tip));
  setAccessibleDescription(tip);
}

QString FittingLabel::ShownLines() const {
  QString shown = WithPlainLineEnds(text());
  // The end of the last line needs no room of its own.
  while (shown.endsWith(u'\n')) shown.chop(1);
  return shown;
}

qreal FittingLabel::NeededHeight() const {
  QPixmap nowhere(1, 1);
  QPainter painter(&nowhere);
  painter.setFont(font());
  return painter.boundingRect(QRectF(0, 0, width(), 0), ShownLines(), Wrapped()).height();
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
  painter.drawText(rect(), Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                   fontMetrics().elidedText(text(), Qt::ElideMiddle, width()));
}

void FittingLabel::PaintSeveral(QPainter& painter) {
  QRectF place(0, 0, width(), qMax<qreal>(NeededHeight(), height()));
  // The end of the text is what happens now.
  place.moveBottom(height());
  painter.drawText(place, ShownLines(), Wrapped());
}

}  // namespace folioweld
