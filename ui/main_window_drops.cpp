// What happens to a file or a folder that was dropped.

#include <QApplication>

#include "dirmerge/paths.h"
#include "ui/main_window.h"

namespace folioweld {

namespace {

constexpr char kLogPrefix[] = "[Folioweld-ProcessOLEDragDrop]=>";

}  // namespace

bool Folioweld::TakesDrops() const {
  return !Busy() && QApplication::activeModalWidget() == nullptr;
}

/// A place is marked while a drop would fill it; a folder is taken anywhere, so for one all of them are.
void Folioweld::ShowDrag(int index, const DraggedFiles& files) {
  DropTarget = static_cast<std::int16_t>(index);
  const bool taken = WhyIgnored(files, TakesDrops()).empty();
  const bool folder = taken && IsFolder(files.Paths.front());
  for (int place = 0; place < 3; ++place) {
    const bool fills = place == index && (place < 2 || !FileName(1).empty());
    places_[static_cast<std::size_t>(place)]->ShowMarked(taken && (folder || fills));
  }
}

bool Folioweld::IsFolder(const std::string& path) {
  const auto attributes = system_.GetFileAttributes(path);
  return attributes.Ok() && attributes.Value().Kind == FileKind::Directory;
}

/// Empty when there is one file or folder that can be taken.
std::string Folioweld::WhyIgnored(const DraggedFiles& files, bool allowed) const {
  if (!allowed) return "a merge, a viewer or a question that comes first";
  if (files.Entries == 0) return "what it holds: no files";
  if (files.Entries > 1) return "what it holds: " + std::to_string(files.Entries) + " entries instead of one";
  if (files.Paths.empty()) return "what it holds: no file of this machine";
  return {};
}

void Folioweld::IgnoreDrop(const std::string& reason) {
  LogLine(kLogPrefix, "Index: " + std::to_string(DropTarget) + " * the drop is ignored");
  LogLine(kLogPrefix, "  because of " + reason);
}

void Folioweld::ProcessOLEDragDrop(int index, const DraggedFiles& files, bool allowed) {
  DropTarget = static_cast<std::int16_t>(index);
  const std::string reason = WhyIgnored(files, allowed && !Busy());
  if (!reason.empty()) {
    IgnoreDrop(reason);
  } else if (IsFolder(files.Paths.front())) {
    DropFolder(files.Paths.front());
  } else {
    DropFile(files.Paths.front());
  }
  if (Busy()) return;
  RefreshControls();
  FinishIfEnding();
}

void Folioweld::DropFolder(const std::string& folder) {
  LogLine(kLogPrefix, "Index: " + std::to_string(DropTarget) + " * directory name: <" + folder +
                          "> has been stored for later use");
  const CurrentDirectoryKeeper keeper(system_);
  if (const SystemError error = system_.SetCurrentDirectory(folder)) {
    IgnoreDrop("\"" + folder + "\": " + error.Words());
    return;
  }
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
  LogLine(kLogPrefix, "Index: " + std::to_string(DropTarget) + " * file name: <" + path + ">");
  if (DropTarget == 0) {
    if (Accepts(path, kLogPrefix)) {
      SetFileName(1, path);
    } else {
      CmdClr1_Click();
    }
  } else if (DropTarget == 1) {
    RefreshControls();
    if (!places_[1]->Select->isEnabled()) DropTarget = 0;
    SetFileName(DropTarget + 1, Accepts(path, kLogPrefix) ? path : std::string());
  } else if (DropTarget != 2) {
    IgnoreDrop("where it fell: beside the places for files");
  } else if (FileName(1).empty()) {
    IgnoreDrop("the 1st input, which comes before the output");
  } else {
    SetFileName(3, path);
  }
}

}  // namespace folioweld
