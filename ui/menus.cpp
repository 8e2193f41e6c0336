#include "ui/menus.h"

#include <QActionGroup>
#include <QCoreApplication>

namespace folioweld {

namespace {

QString Caption(const char* text) {
  return QCoreApplication::translate("Folioweld", text);
}

void SetName(QMenu* menu, const char* name) {
  menu->setObjectName(QString::fromLatin1(name));
  menu->menuAction()->setObjectName(QString::fromLatin1(name));
}

QMenu* AddMenu(QMenuBar* bar, const char* name, const char* caption) {
  QMenu* menu = bar->addMenu(Caption(caption));
  SetName(menu, name);
  return menu;
}

QMenu* AddMenu(QMenu* parent, const char* name, const char* caption) {
  QMenu* menu = parent->addMenu(Caption(caption));
  SetName(menu, name);
  return menu;
}

QAction* AddItem(QMenu* menu, const char* name, const char* caption, bool checkable = false) {
  QAction* item = menu->addAction(Caption(caption));
  item->setObjectName(QString::fromLatin1(name));
  item->setCheckable(checkable);
  return item;
}

/// One of them is always checked, which styles show by a round mark.
void MakeExclusive(QMenu* menu, const QList<QAction*>& items) {
  auto* group = new QActionGroup(menu);
  for (QAction* item : items) group->addAction(item);
}

}  // namespace

Menus::Menus(QMenuBar* bar) {
  MenuFile0 = AddMenu(bar, "MenuFile0", "File");
  MenuPdfMergeDir = AddItem(MenuFile0, "MenuPdfMergeDir", "Merge all PDF in a Directory");
  MenuFilExit = AddItem(MenuFile0, "MenuFilExit", "Exit");

  MenuOpt0 = AddMenu(bar, "MenuOpt0", "Options");
  MenuSortOpt0 = AddMenu(MenuOpt0, "MenuSortOpt0", "Sorting order...");
  MenuSortLexical = AddItem(MenuSortOpt0, "MenuSortLexical", "Lexical ordering", true);
  MenuSortLexicalRev = AddItem(MenuSortOpt0, "MenuSortLexicalRev", "Lexical ordering (reverse)", true);
  MenuSortByDate = AddItem(MenuSortOpt0, "MenuSortByDate", "By Date", true);
  MenuSortByDateRev = AddItem(MenuSortOpt0, "MenuSortByDateRev", "By Date (reverse)", true);
  ShowLogWindow = AddMenu(MenuOpt0, "ShowLogWindow", "Log window...");
  MnuLogShow = AddItem(ShowLogWindow, "MnuLogShow", "Show", true);
  MnuLogHide = AddItem(ShowLogWindow, "MnuLogHide", "Hide", true);
  MenuOptViewOutput = AddMenu(MenuOpt0, "MenuOptViewOutput", "Display output document...");
  MenuOptViewYes = AddItem(MenuOptViewOutput, "MenuOptViewYes", "Display", true);
  MenuOptViewNo = AddItem(MenuOptViewOutput, "MenuOptViewNo", "Do not display", true);
  MenuTmp0 = AddItem(MenuOpt0, "MenuTmp0", "Select TMP directory");
  MenuDefaultTmp0 = AddItem(MenuOpt0, "MenuDefaultTmp0", "Set default TMP directory");

  MakeExclusive(MenuSortOpt0, {MenuSortLexical, MenuSortLexicalRev, MenuSortByDate, MenuSortByDateRev});
  MakeExclusive(ShowLogWindow, {MnuLogShow, MnuLogHide});
  MakeExclusive(MenuOptViewOutput, {MenuOptViewYes, MenuOptViewNo});

  MenuAbout0 = AddMenu(bar, "MenuAbout0", "About");
  MenuAboutFolioweld = AddItem(MenuAbout0, "MenuAboutFolioweld", "Folioweld");
  MenuVarnel = AddItem(MenuAbout0, "MenuVarnel", "Ambrose Varnel");
  MenuPdfReader = AddItem(MenuAbout0, "MenuPdfReader", "My portable document reader");
}

}  // namespace folioweld
