#pragma once

#include <QAbstractButton>

namespace folioweld {

/// `PictToggle`: the picture that swaps the two inputs, drawn in code. Disabled, its symbol is erased.
class TogglePicture : public QAbstractButton {
  Q_OBJECT

 public:
  explicit TogglePicture(QWidget* parent);

  /// Brings the picture to the front and draws it pressed or released.
  void DrawToggle(bool pressed);

 protected:
  void paintEvent(QPaintEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  [[nodiscard]] QColor SymbolColour() const;

  bool drawnPressed_ = false;
};

}  // namespace folioweld
