#pragma once

#include "ui/caption_button.h"
#include "ui/fitting_label.h"
#include "ui/title_frame.h"
#include "ui/twip_grid.h"

namespace folioweld {

/// One of the window's three places for a file: a frame with the file's path, a status text and the buttons
/// that choose and clear the file.
///
/// Object names are the names of the controls; the controls of an array have their index appended, so that
/// the path of the first place is "txtFileName0" and its status "txtDoing0".
class FilePlace : public TitleFrame {
  Q_OBJECT

 public:
  struct Names {
    int Index;  ///< 0, 1, 2
    QString Frame;
    QString Caption;
    QString Select;
    QString Clear;
    QString Purpose;  ///< what the file is, for a screen reader
  };

  FilePlace(const Names& names, QWidget* parent);

  /// Puts the frame at its place in the window and the controls at theirs in the frame.
  void Arrange(const TwipGrid& grid);
  /// Whether every caption can be read on this grid.
  [[nodiscard]] bool Fits(const TwipGrid& grid) const;

  FittingLabel* txtFileName;
  FittingLabel* txtDoing;
  CaptionButton* Select;  ///< `cmdInput1`, `cmdInput2`, `cmdOutput`
  CaptionButton* Clear;   ///< `CmdClr1`, `CmdClr2`, `CmdClrOut`

 private:
  int index_;
};

}  // namespace folioweld
