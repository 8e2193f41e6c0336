#include "ui/fitting_label.h"

#include <QPainter>
#include <QTextLayout>
#include <QTextOption>

namespace folioweld {

namespace {

/// How much closer than usual lines may stand, when that makes all of them fit.
constexpr qreal kClosest = 0.92;

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
  const bool fits =
      lines_ == Lines::Single ? fontMetrics().horizontalAdvance(text()) <= width() : AllLinesFit();
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

QStringList FittingLabel::WrappedLines() const {
  QStringList lines;
  for (const QString& paragraph : ShownLines().split(u'\n')) {
    QTextLayout layout(paragraph, font());
    layout.setTextOption(Wrapped());
    layout.beginLayout();
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
      line.setLineWidth(width());
      lines.append(paragraph.mid(line.textStart(), line.textLength()));
    }
    layout.endLayout();
    if (paragraph.isEmpty()) lines.append(QString());
  }
  return lines;
}

qreal FittingLabel::LineHeight(qsizetype lines) const {
  const qreal usual = fontMetrics().lineSpacing();
  const qreal needed = usual * static_cast<qreal>(lines);
  return needed > height() && needed * kClosest <= height() ? height() / static_cast<qreal>(lines) : usual;
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

bool FittingLabel::AllLinesFit() const {
  const qsizetype lines = WrappedLines().size();
  return LineHeight(lines) * static_cast<qreal>(lines) <= height();
}

/// Whole lines only; the last ones tell what happens now.
void FittingLabel::PaintSeveral(QPainter& painter) {
  QStringList lines = WrappedLines();
  const qreal step = LineHeight(lines.size());
  const auto room = static_cast<qsizetype>(height() / step + 0.01);
  if (lines.size() > room) lines = lines.last(qMax<qsizetype>(1, room));
  qreal baseline = fontMetrics().ascent();
  for (const QString& line : lines) {
    painter.drawText(QPointF(0, baseline), line);
    baseline += step;
  }
}

}  // namespace folioweld
