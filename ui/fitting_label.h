#pragma once

#include <QLabel>

namespace folioweld {

/// A label of fixed size. What does not fit leaves in the middle of a single line and at the top of several.
class FittingLabel : public QLabel {
  Q_OBJECT

 public:
  enum class Lines { Single, Several };

  /// `purpose` is what the label shows, as a screen reader says it in front of the text.
  FittingLabel(const QString& controlName, const QString& purpose, Lines lines, QWidget* parent);

  /// The caption, and what it stands for where that is more. The whole of it is shown as a tooltip where it
  /// cannot be read in full.
  void SetCaption(const QString& caption, const QString& whole = {});

 protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

 private:
  void PaintSingle(QPainter& painter);
  void PaintSeveral(QPainter& painter);
  [[nodiscard]] QString ShownLines() const;
  [[nodiscard]] QStringList WrappedLines() const;
  [[nodiscard]] qreal LineHeight(qsizetype lines) const;
  [[nodiscard]] bool AllLinesFit() const;
  void RefreshToolTip();

  QString purpose_;
  QString whole_;
  Lines lines_;
};

}  // namespace folioweld
