// The file places: choosing, clearing and swapping.

#include <utility>

#include "dirmerge/document_list.h"
#include "dirmerge/paths.h"
#include "ui/main_window.h"

namespace folioweld {

namespace {

constexpr char kOutputPrefix[] = "[Folioweld-cmdOutput_Click]=>";

std::string Quoted(const std::string& name) {
  return "\"" + name + "\"";
}

/// The name with the extension where it has none.
std::string WithDefaultExtension(const std::string& path, const std::string& extension) {
  std::string name;
  std::string folder;
  SplitPath(path, name, folder);
  return name.empty() || name.find('.') != std::string::npos ? path : path + "." + extension;
}

}  // namespace

void Folioweld::cmdInput1_Click() {
  ChooseInput(1, "1st");
}

void Folioweld::cmdInput2_Click() {
  ChooseInput(2, "2nd");
}

void Folioweld::ChooseInput(int slot, const std::string& ordinal) {
  if (Busy()) return;
  const std::string name = dialogs_.AskOpenFile({"Folioweld - Please choose " + ordinal + " input file",
                                                 kDialogExtension, kDialogFilter, FileName(slot)});
  if (!name.empty()) {
    if (Accepts(name, "[Folioweld-cmdInput" + std::to_string(slot) + "_Click]=>")) {
      SetFileName(slot, name);
    } else {
      Refuse(Quoted(name) + "\r\n is not a suitable PDF document for this program");
    }
  }
  RefreshControls();
}

void Folioweld::LogLine(const std::string& logPrefix, const std::string& line) {
  if (program_.Merge.LogEnabled) log_.AddLogLine(logPrefix + line);
}

bool Folioweld::Accepts(const std::string& name, const std::string& logPrefix) {
  PassFailure why;
  if (IsThisDocumentApdf(files_, name, &why) || IsToBePrepared(name)) return true;
  LogLine(logPrefix, "File: " + Quoted(name) + "  is not acceptable for merging");
  LogLine(logPrefix, "  because of " + why.Sentence({}) + " (" + Quoted(name) + ")");
  return false;
}

bool Folioweld::IsToBePrepared(const std::string& name) {
  if (!program_.Prepare) return false;
  const auto file = system_.GetFileAttributes(name);
  return file.Ok() && file.Value().Kind == FileKind::Regular && LooksLikeDocument(files_, name);
}

void Folioweld::cmdOutput_Click() {
  if (Busy()) return;
  const std::string name = ChooseOutputFile(
      {"Folioweld - Please choose output file", kDialogExtension, kDialogFilter, FileName(3)});
  if (!name.empty()) TakeOutput(name);
  RefreshControls();
}

std::string Folioweld::ChooseOutputFile(FileRequest request) {
  for (;;) {
    const std::string typed = dialogs_.AskSaveFile(request);
    if (typed.empty()) return {};
    std::string name = WithDefaultExtension(typed, request.DefaultExtension);
    // An input is refused by the caller, so there is nothing to be asked.
    if (IsInputFile(name) || MayReplace(name)) return name;
    if (ending_) return {};
    request.InitialName = name;
  }
}

bool Folioweld::MayReplace(const std::string& name) {
  if (!system_.GetLinkAttributes(name).Ok()) return true;
  return dialogs_.ShowBox(
      {BoxIcon::Exclamation, kBoxTitle,
       "The output file\r\n" + Quoted(name) + "\r\n exists already.\r\nDo you want to replace it?", true});
}

bool Folioweld::IsInputFile(const std::string& name) {
  const auto file = system_.GetFileAttributes(name);
  for (const int slot : {1, 2}) {
    if (FileName(slot).empty()) continue;
    if (name == FileName(slot)) return true;
    const auto input = system_.GetFileAttributes(FileName(slot));
    if (file.Ok() && input.Ok() && file.Value().Identity == input.Value().Identity) return true;
  }
  return false;
}

void Folioweld::TakeOutput(const std::string& name) {
  if (IsInputFile(name)) {
    LogLine(kOutputPrefix, "The output file " + Quoted(name) + " is also an input file.");
    Refuse("The output file\r\n" + Quoted(name) +
           "\r\n is also an input file.\r\nI cannot do this operation!");
    return;
  }
  files_.DeleteFile(name);
  std::string fileName;
  std::string folder;
  SplitPath(name, fileName, folder);
  const CurrentDirectoryKeeper keeper(system_);
  if (const SystemError error = system_.SetCurrentDirectory(WithSeparator(folder))) {
    LogLine(kOutputPrefix, "The output file " + Quoted(name) + " cannot be created.");
    LogLine(kOutputPrefix, "  because of " + error.Words() + " (" + Quoted(folder) + ")");
    Refuse("The output file\r\n" + Quoted(name) + "\r\n cannot be created.\r\nI cannot do this operation!");
    return;
  }
  SetFileName(3, name);
}

void Folioweld::Refuse(const std::string& text) {
  ShowBox(BoxIcon::Exclamation, kBoxTitle, text);
  program_.Merge.MergeStatus = -1;
}

void Folioweld::CmdClr1_Click() {
  if (Busy()) return;
  const std::string moved = FileName(2);
  SetFileName(2, {});
  SetFileName(1, moved);
  RefreshControls();
}

void Folioweld::CmdClr2_Click() {
  if (Busy()) return;
  SetFileName(2, {});
  RefreshControls();
}

void Folioweld::CmdClrOut_Click() {
  if (Busy()) return;
  SetFileName(3, {});
  RefreshControls();
}

void Folioweld::PictToggle_Click() {
  if (Busy()) return;
  if (!FileName(1).empty() && !FileName(2).empty()) {
    const std::string first = FileName(1);
    SetFileName(1, FileName(2));
    SetFileName(2, first);
  }
  RefreshControls();
}

void Folioweld::PictToggle_MouseDown() {
  pictToggle_->DrawToggle(true);
}

void Folioweld::PictToggle_MouseUp() {
  pictToggle_->DrawToggle(false);
}

void Folioweld::SetFileName(int slot, const std::string& name) {
  statusKept_ = false;
  FileName(slot) = name;
}

}  // namespace folioweld
