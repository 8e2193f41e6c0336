#pragma once

#include <QAction>
#include <QMenu>
#include <QMenuBar>

namespace folioweld {

/// The menu tree. Items and submenus carry their names as object names; what they do is connected elsewhere.
struct Menus {
  explicit Menus(QMenuBar* bar);

  QMenu* MenuFile0;
  QAction* MenuPdfMergeDir;
  QAction* MenuFilExit;

  QMenu* MenuOpt0;
  QMenu* MenuSortOpt0;
  QAction* MenuSortLexical;
  QAction* MenuSortLexicalRev;
  QAction* MenuSortByDate;
  QAction* MenuSortByDateRev;
  QMenu* ShowLogWindow;
  QAction* MnuLogShow;
  QAction* MnuLogHide;
  QMenu* MenuOptViewOutput;
  QAction* MenuOptViewYes;
  QAction* MenuOptViewNo;
  QAction* MenuTmp0;
  QAction* MenuDefaultTmp0;

  QMenu* MenuAbout0;
  QAction* MenuAboutFolioweld;
  QAction* MenuVarnel;
  QAction* MenuPdfReader;
};

}  // namespace folioweld
