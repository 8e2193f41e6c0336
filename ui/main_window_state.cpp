// What the controls show and which of them are enabled: idle, while a job runs, while a viewer is watched.

#include <optional>

#include "dirmerge/carrying.h"
#include "dirmerge/prepared_inputs.h"
#include "engine/shortened_path.h"
#include "ui/file_names.h"
#include "ui/main_window.h"

namespace folioweld {

namespace {

/// How long the wait for a viewer sleeps at most.
constexpr int kViewerPollMillis = 50;

}  // namespace

void Folioweld::RefreshControls() {
  for (int index = 0; index < 3; ++index) ShowSlotFileName(index);
  if (!Busy()) {
    if (shell_.StatusText(0).empty() && shell_.StatusText(1).empty() && shell_.StatusText(2).empty()) {
      statusKept_ = false;
    }
    places_[0]->Select->setEnabled(true);
    menus_.MenuPdfMergeDir->setEnabled(true);
    RefreshInputs();
    RefreshOutput();
  }
  pictToggle_->DrawToggle(false);
}

void Folioweld::RefreshInputs() {
  const bool first = !FileName(1).empty();
  RefreshMark(0, first ? QStringLiteral("1<") : QString());
  SetEnabled(places_[0]->Clear, first);
  SetEnabled(places_[1]->Select, first);
  SetEnabled(places_[2]->Select, first);
  if (!first && !FileName(2).empty()) {
    FileName(2).clear();
    ShowSlotFileName(1);
  }
  const bool second = !FileName(2).empty();
  RefreshMark(1, second ? QStringLiteral("2<") : QString());
  SetEnabled(places_[1]->Clear, second);
  SetEnabled(pictToggle_, first && second);
}

void Folioweld::RefreshOutput() {
  const bool output = !FileName(3).empty();
  RefreshMark(2, output ? QStringLiteral(">") : QString());
  SetEnabled(places_[2]->Clear, output);
  SetEnabled(cmdOK_, output);
  SetDefaultButton(output ? cmdOK_ : cmdCancel_);
}

void Folioweld::RefreshMark(int index, const QString& mark) {
  if (!statusKept_) places_[static_cast<std::size_t>(index)]->txtDoing->SetCaption(mark);
}

void Folioweld::ShowSlotFileName(int index) {
  FittingLabel* label = places_[static_cast<std::size_t>(index)]->txtFileName;
  const std::string& name = FileName(index + 1);
  label->SetCaption(ShownPath(name, kLongestShownPath), ShownPath(name, static_cast<int>(name.size())));
}

void Folioweld::ResetSlots() {
  MergeState& merge = program_.Merge;
  merge.MergeStatus = 2;
  merge.JobRunning = false;
  merge.AbortRequested = false;
  for (int slot = 1; slot <= 3; ++slot) {
    if (slot < 3) merge.DocUsed(slot) = true;
    merge.DocFileNumber(slot) = 0;
    merge.DocHeader(slot).clear();
    merge.DocSecondLine(slot).clear();
    merge.DocXrefStart(slot) = -1;
    FilePlace* place = places_[static_cast<std::size_t>(slot - 1)];
    place->txtFileName->SetCaption({});
    place->txtDoing->SetCaption({});
  }
}

void Folioweld::ShowStatusText(int line, const std::string& text) {
  places_[static_cast<std::size_t>(line)]->txtDoing->SetCaption(ShownText(text));
}

void Folioweld::DisableFileControls() {
  for (FilePlace* place : places_) {
    SetEnabled(place->Clear, false);
    SetEnabled(place->Select, false);
  }
  SetEnabled(pictToggle_, false);
  SetEnabled(cmdOK_, false);
  menus_.MenuPdfMergeDir->setEnabled(false);
}

/// Qt gives the focus of a control that is disabled to the next one, which may clear a place or end the
/// program at the next press. Here "Select..." of the same place gets it, or nothing does.
void Folioweld::SetEnabled(QWidget* control, bool enabled) {
  if (!enabled && control == focusWidget()) {
    FocusNothing();
    for (const FilePlace* place : places_) {
      const bool other = place->isAncestorOf(control) && place->Select != control;
      if (other && place->Select->isEnabled()) place->Select->setFocus();
    }
  }
  control->setEnabled(enabled);
}

/// The client area has no use for a key. A window without any focus would be given one by Qt when it is
/// activated.
void Folioweld::FocusNothing() {
  client_->setFocus();
}

void Folioweld::FocusGo() {
  if (cmdOK_->isEnabled()) {
    cmdOK_->setFocus();
  } else {
    FocusNothing();
  }
}

void Folioweld::SetDefaultButton(CaptionButton* button) {
  cmdOK_->setDefault(button == cmdOK_);
  cmdCancel_->setDefault(button == cmdCancel_);
}

void Folioweld::cmdOK_Click() {
  if (Busy()) return;
  // The copies live until the job has ended.
  PreparedInputs inputs(program_, files_, settings_, shell_, log_);
  if (!program_.Prepare || inputs.Prepare()) RunJob();
  FinishIfEnding();
}

void Folioweld::RunJob() {
  std::optional<Carrying> carrying;
  if (program_.Carry.Wanted) carrying.emplace(program_, files_, shell_, log_);
  job_.SetSequel(carrying ? &*carrying : nullptr);
  job_.cmdOK_Click();
  job_.SetSequel(nullptr);
}

void Folioweld::DisableInputPicking() {
  statusKept_ = true;
  DisableFileControls();
}

void Folioweld::EnterRunningState() {
  statusKept_ = true;
  ShowRunningLook(true);
}

void Folioweld::LeaveRunningState() {
  // Between the rounds of a directory merge the look stays.
  if (program_.ExternalBusy || !runningLook_) return;
  ShowRunningLook(false);
  places_[0]->Select->setEnabled(true);
  places_[1]->Select->setEnabled(true);
  cmdOK_->setEnabled(true);
  SetDefaultButton(cmdOK_);
  FocusGo();
}

void Folioweld::ShowRunningLook(bool running) {
  runningLook_ = running;
  if (!running) {
    cmdCancel_->ShowGuardedCaption(tr("Exit"));
    unsetCursor();
    return;
  }
  cmdCancel_->ShowCaption(tr("CANCEL (abort)"));
  setCursor(Qt::WaitCursor);
  SetDefaultButton(cmdCancel_);
  FocusNothing();
  DisableFileControls();
}

/// Takes the running look away while a question of the job is open.
class Folioweld::RunningLookLifted {
 public:
  explicit RunningLookLifted(Folioweld& window) : window_(window), lifted_(window.runningLook_) {
    if (lifted_) window_.ShowRunningLook(false);
  }
  RunningLookLifted(const RunningLookLifted&) = delete;
  RunningLookLifted& operator=(const RunningLookLifted&) = delete;
  ~RunningLookLifted() {
    if (lifted_) window_.ShowRunningLook(true);
  }

 private:
  Folioweld& window_;
  const bool lifted_;
};

void Folioweld::ShowMessage(const BoxRequest& request) {
  const RunningLookLifted lifted(*this);
  dialogs_.ShowBox(request);
}

std::string Folioweld::AskForOutputFile(const FileRequest& request) {
  const RunningLookLifted lifted(*this);
  return ChooseOutputFile(request);
}

std::string Folioweld::BrowseForFolder(const FolderRequest& request) {
  const RunningLookLifted lifted(*this);
  return dialogs_.AskFolder(request);
}

void Folioweld::ShowOutput(const std::string& path) {
  MergeState& merge = program_.Merge;
  if (path.empty() || !merge.ShowOutputAfterMerge || merge.SilentMode || !ReaderAvailable || ending_) return;
  ViewerProcess process = 0;
  if (!viewer_.LaunchProcess(path, process)) return;
  program_.ExternalBusy = true;
  viewerWatched_ = true;
  merge.AbortRequested = false;
  EnterViewerMode();
  viewer_.WaitForViewer(
      process,
      [this, &merge] {
        if (ending_) return Viewer::Request::Leave;
        return merge.AbortRequested ? Viewer::Request::Close : Viewer::Request::None;
      },
      [this] { shell_.WaitForEvents(kViewerPollMillis); });
  viewerCollector_.start();
  viewerWatched_ = false;
  program_.ExternalBusy = false;
  merge.AbortRequested = false;
  merge.SilentMode = false;
  unsetCursor();
  cmdCancel_->ShowGuardedCaption(tr("Exit"));
  RefreshControls();
  FocusGo();
}

void Folioweld::EnterViewerMode() {
  DisableFileControls();
  cmdCancel_->ShowCaption(tr("Close display window"));
  setCursor(Qt::WaitCursor);
  SetDefaultButton(cmdCancel_);
  cmdCancel_->setFocus();
}

}  // namespace folioweld
