// The ways out of the window.

#include <QCloseEvent>

#include "ui/main_window.h"

namespace folioweld {

namespace {

constexpr std::int16_t kLeftByExit = 1;

}  // namespace

void Folioweld::cmdCancel_Click() {
  if (!Busy()) {
    program_.Merge.MergeStatus = kLeftByExit;
    Unload();
    return;
  }
  job_.AbortOperation();
  shell_.Yield();
}

void Folioweld::MenuFilExit_Click() {
  if (AskLeave()) Unload();
}

bool Folioweld::AskLeave() {
  return dialogs_.ShowBox({BoxIcon::Question, kBoxTitle, "Do you want to leave Folioweld?", true});
}

bool Folioweld::Form_QueryUnload(bool fromCloseBox) {
  if (!fromCloseBox) return true;
  if (Busy() && !viewerWatched_) {
    job_.AbortOperation();
    return false;
  }
  return AskLeave();
}

void Folioweld::closeEvent(QCloseEvent* event) {
  if (unloading_) {
    event->accept();
    return;
  }
  // The unloading below closes the window itself, in its own time.
  event->ignore();
  if (Form_QueryUnload(true)) Unload();
}

void Folioweld::EndBySystem() {
  if (Busy() && !viewerWatched_) exitStatus_ = kNoOutput;
  dialogs_.CloseAll();
  Unload();
}

void Folioweld::Unload() {
  ending_ = true;
  if (!Busy()) {
    Finish();
    return;
  }
  // A job cleans up first. A viewer is left to the user.
  if (!viewerWatched_) job_.AbortOperation();
}

void Folioweld::FinishIfEnding() {
  if (ending_) Finish();
}

void Folioweld::Finish() {
  if (unloading_) return;
  unloading_ = true;
  logWindow_.ExitLogWindow();
  close();
  EndProgram(exitStatus_);
}

}  // namespace folioweld
