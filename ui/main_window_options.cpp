// The menus: options, the directory merge and the About boxes.

#include "dirmerge/file_ordering.h"
#include "ui/main_window.h"

namespace folioweld {

namespace {

constexpr char kNotice[] = "Copyright (c) 2026 The Folioweld developers. MIT License.";
constexpr char kAddress[] = "ambrose.varnel@folioweld.example";

}  // namespace

void Folioweld::MenuPdfMergeDir_Click() {
  if (Busy()) return;
  directoryMerge_.MenuPdfMergeDir_Click();
  RefreshControls();
  FinishIfEnding();
}

void Folioweld::MenuSortLexical_Click() {
  SetSortOrder(1);
}

void Folioweld::MenuSortLexicalRev_Click() {
  SetSortOrder(-1);
}

void Folioweld::MenuSortByDate_Click() {
  SetSortOrder(2);
}

void Folioweld::MenuSortByDateRev_Click() {
  SetSortOrder(-2);
}

void Folioweld::SetSortOrder(std::int16_t order) {
  program_.SortOrder = order;
  UpdateSortMenu();
}

void Folioweld::UpdateSortMenu() {
  const std::pair<QAction*, std::int16_t> items[] = {{menus_.MenuSortLexical, std::int16_t{1}},
                                                     {menus_.MenuSortLexicalRev, std::int16_t{-1}},
                                                     {menus_.MenuSortByDate, std::int16_t{2}},
                                                     {menus_.MenuSortByDateRev, std::int16_t{-2}}};
  bool known = false;
  for (const auto& [item, order] : items) known = known || order == program_.SortOrder;
  for (const auto& [item, order] : items) {
    if (known) item->setChecked(order == program_.SortOrder);
  }
  StoreSortOrder(settings_, program_.SortOrder);
}

void Folioweld::MnuLogShow_Click() {
  program_.Merge.LogEnabled = true;
  ApplyLogWindowOption();
}

void Folioweld::MnuLogHide_Click() {
  program_.Merge.LogEnabled = false;
  ApplyLogWindowOption();
}

void Folioweld::ApplyLogWindowOption() {
  const bool shown = program_.Merge.LogEnabled;
  menus_.MnuLogShow->setChecked(shown);
  menus_.MnuLogHide->setChecked(!shown);
  static_cast<void>(settings_.WriteSetting("MenuShowLogWindow", shown ? "1" : "0"));
  if (!shown) {
    logWindow_.ExitLogWindow();
    return;
  }
  logWindow_.ShowLog(*this);
  if (!isVisible()) return;
  raise();
  activateWindow();
}

void Folioweld::MenuOptViewYes_Click() {
  SetDisplayOption(true);
}

void Folioweld::MenuOptViewNo_Click() {
  SetDisplayOption(false);
}

void Folioweld::SetDisplayOption(bool display) {
  program_.Merge.ShowOutputAfterMerge = display;
  static_cast<void>(settings_.WriteSetting("DisplayOutputAfterMerge", display ? "1" : "0"));
  menus_.MenuOptViewYes->setChecked(display);
  menus_.MenuOptViewNo->setChecked(!display);
}

void Folioweld::MenuTmp0_Click() {
  tmpDirectory_.ChooseTmpDirectory();
}

void Folioweld::MenuDefaultTmp0_Click() {
  tmpDirectory_.ResetTmpDirectory();
}

void Folioweld::MenuAboutFolioweld_Click() {
  ShowInformation(std::string("\rFolioweld\rversion # " FOLIOWELD_VERSION "\r\r") + kNotice + "\r\r");
}

void Folioweld::MenuVarnel_Click() {
  ShowInformation(std::string("\rAmbrose Varnel's e-mail address:\r\r") + kAddress + "\r\r");
}

void Folioweld::MenuPdfReader_Click() {
  if (ReaderPath.empty()) {
    ShowBox(BoxIcon::Exclamation, kBoxTitle,
            "\rOn this computer, there is no reader for portable documents!");
    return;
  }
  ShowInformation("\rOn this computer, the reader for portable documents is:\r\r" + ReaderPath + "\r\r");
}

void Folioweld::ShowInformation(const std::string& text) {
  dialogs_.ShowBox({BoxIcon::Information, kBoxTitle, text});
}

void Folioweld::ShowBox(BoxIcon icon, const std::string& title, const std::string& text) {
  if (!program_.Merge.SilentMode) dialogs_.ShowBox({icon, title, text});
}

}  // namespace folioweld
