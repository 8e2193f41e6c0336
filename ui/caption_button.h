#pragma once

#include <QPushButton>

namespace folioweld {

/// A push button whose caption is broken into lines where it is too long, and that knows on which of its
/// captions it was pressed.
class CaptionButton : public QPushButton {
  Q_OBJECT

 public:
  CaptionButton(const QString& controlName, const QString& caption, QWidget* parent);

  /// Whether a caption can be read in full on a button of this size.
  [[nodiscard]] bool Fits(const QString& caption, QSize size) const;

  /// Whether the press that led to the present click began on the caption that the button has now. The
  /// second click of a double click counts as begun where the first one was.
  [[nodiscard]] bool PressBelongsToCaption() const { return pressedCaption_ == text(); }

 protected:
  void paintEvent(QPaintEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;

 private:
  QString pressedCaption_;
  bool secondClick_ = false;
};

}  // namespace folioweld
