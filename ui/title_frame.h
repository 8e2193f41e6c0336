#pragma once

#include <QGroupBox>

namespace folioweld {

/// A frame whose line runs through the middle of its title, so that what lies in the frame begins just below
/// the title in every style.
class TitleFrame : public QGroupBox {
  Q_OBJECT

 public:
  using QGroupBox::QGroupBox;

  /// Whether the line stands out, in the colour of what is selected.
  void ShowMarked(bool marked);
  [[nodiscard]] bool Marked() const { return marked_; }

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  bool marked_ = false;
};

}  // namespace folioweld
