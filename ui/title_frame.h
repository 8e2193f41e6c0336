#pragma once

#include <QGroupBox>

namespace folioweld {

/// A frame whose line runs through the middle of its title, so that what lies in the frame begins just below
/// the title in every style.
class TitleFrame : public QGroupBox {
  Q_OBJECT

 public:
  using QGroupBox::QGroupBox;

 protected:
  void paintEvent(QPaintEvent* event) override;
};

}  // namespace folioweld
