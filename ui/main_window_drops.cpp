// What happens to a file or a folder that was dropped.

#include "dirmerge/paths.h"
#include "ui/main_window.h"

namespace folioweld {

namespace {

constexpr char kLogPrefix[] = "[Folioweld-ProcessOLEDragDrop]=>";

}  // namespace

void Folioweld::ProcessOLEDragDrop(int index, const std::vector<std::string>& files) {
  if (Busy()) return;
  DropTarget = static_cast<std::int16_t>(index);
  if (files.size() == 1) {
    const std::string& path = files.front();
    const auto attributes = system_.GetFileAttributes(path);
    if (attributes.Ok() && attributes.Value().Kind == FileKind::Directory) {
      DropFolder(path);
    } else {
      DropFile(path);
    }
  }
  RefreshControls();
  FinishIfEnding();
}

void Folioweld::DropFolder(const std::string& folder) {
  if (program_.Merge.LogEnabled) {
    log_.AddLogLine(kLogPrefix + ("Index: " + std::to_string(DropTarget)) + " * directory name: <" + folder +
                    "> has been stored for later use");
  }
  const CurrentDirectoryKeeper keeper(system_);
  if (system_.SetCurrentDirectory(folder)) return;
  const std::string directory = WithSeparator(folder);
  static_cast<void>(settings_.WriteSetting("MergeCurDir", directory));
  SetSortOrder(dialogs_.AskSortOrder(program_.SortOrder));
  if (ending_) return;
  // Given as on a command line, so that the folder is not asked for once more.
  program_.CommandLineDirectory = directory;
  directoryMerge_.MenuPdfMergeDir_Click();
  program_.CommandLineDirectory.clear();
}

void Folioweld::DropFile(const std::string& path) {
  if (program_.Merge.LogEnabled) {
    log_.AddLogLine(kLogPrefix + ("Index: " + std::to_string(DropTarget)) + " * file name: <" + path + ">");
  }
  if (DropTarget == 0) {
    if (IsThisDocumentApdf(files_, path)) {
      SetFileName(1, path);
    } else {
      CmdClr1_Click();
    }
  } else if (DropTarget == 1) {
    RefreshControls();
    if (!places_[1]->Select->isEnabled()) DropTarget = 0;
    SetFileName(DropTarget + 1, IsThisDocumentApdf(files_, path) ? path : std::string());
  } else if (DropTarget == 2 && !FileName(1).empty()) {
    SetFileName(3, path);
  }
}

}  // namespace folioweld
