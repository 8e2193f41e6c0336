#pragma once

#include <QLabel>

namespace folioweld {

/// A label of fixed size whose text can be read in full: it is drawn smaller where it does not fit. What is
/// still too long loses its middle on a single line, and its beginning on several lines.
class FittingLabel : public QLabel {
  Q_OBJECT

 public:
  enum class Lines { Single, Several };

  /// `purpose` is what the label shows, as a screen reader says it in front of the text.
  FittingLabel(const QString& controlName, const QString& purpose, Lines lines, QWidget* parent);

  void SetCaption(const QString& caption);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  void PaintSingle(QPainter& painter);
  void PaintSeveral(QPainter& painter);
  [[nodiscard]] QFont Smaller(int percent) const;

  QString purpose_;
  Lines lines_;
};

}  // namespace folioweld
