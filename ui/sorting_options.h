#pragma once

#include <QDialog>
#include <QLabel>
#include <QRadioButton>
#include <array>
#include <cstdint>

#include "ui/caption_button.h"
#include "ui/title_frame.h"
#include "ui/twip_grid.h"

namespace folioweld {

/// `SortingOptions`: asks in which order the documents of a folder are joined. The option buttons,
/// "Option10" to "Option13", are `Option1` with its index. Two have the frame as their parent and two the
/// window.
class SortingOptions : public QDialog {
  Q_OBJECT

 public:
  explicit SortingOptions(QWidget* parent);

  /// 1, -1, 2 or -2; changed by "I choose this option" only.
  void SetSortOption(std::int16_t value);
  [[nodiscard]] std::int16_t SortOption() const { return sorting_; }

  void Form_Load();
  /// Centres the window on its screen, the first time.
  void Form_Activate();
  void Option1_Click(int index);
  void cmdOK_Click();
  void cmdCancel_Click();

 protected:
  void showEvent(QShowEvent* event) override;
  void changeEvent(QEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void Arrange();
  [[nodiscard]] bool Fits(const TwipGrid& grid) const;

  std::int16_t sorting_ = 1;
  int sortIndex_ = 0;
  bool activated_ = false;
  QLabel* label1_;
  TitleFrame* frame1_;
  std::array<QRadioButton*, 4> option1_{};
  CaptionButton* cmdOK_;
  CaptionButton* cmdCancel_;
};

}  // namespace folioweld
