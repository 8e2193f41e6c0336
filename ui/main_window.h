#pragma once

#include <QMainWindow>
#include <QTimer>
#include <array>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "dirmerge/arguments.h"
#include "dirmerge/command_line.h"
#include "dirmerge/directory_merge.h"
#include "dirmerge/program_state.h"
#include "dirmerge/tmp_directory.h"
#include "engine/activity_log.h"
#include "engine/file_module.h"
#include "engine/merge_job.h"
#include "engine/settings_store.h"
#include "ui/dialogs.h"
#include "ui/drop_handling.h"
#include "ui/file_place.h"
#include "ui/held_keys.h"
#include "ui/log_window.h"
#include "ui/menus.h"
#include "ui/toggle_picture.h"
#include "ui/viewer.h"
#include "ui/window_shell.h"

namespace folioweld {

/// `Folioweld`: the main window. It owns the state of the program and wires the parts of the window to it.
/// Every widget's object name is the name of its control; see `FilePlace` for those of control arrays.
///
/// Busy means that a job or a directory merge runs or a viewer is watched. Then every control that changes a
/// file name or starts something is disabled and its handler does nothing; "Cancel", the options, the log and
/// the About boxes go on working.
class Folioweld : public QMainWindow, private JobWindow {
  Q_OBJECT

 public:
  /// What is given has to outlive the window.
  Folioweld(WindowsAPI& system, Dialogs& dialogs, ViewerDesktop& desktop, Arguments arguments);
  ~Folioweld() override;

  /// Loads and shows the window; its first activation follows from the event loop.
  void Start();
  /// Besides the log window.
  void ShowLogTo(LogReader reader) { shell_.ReadsLog = std::move(reader); }

  // What happens to the window.
  void Form_Load();
  void Form_Activate();
  void Form_Resize();
  /// False when the close is refused.
  [[nodiscard]] bool Form_QueryUnload(bool fromCloseBox);
  /// SIGTERM, SIGINT or the end of the desktop's session: a job is cancelled first and cleans up.
  void EndBySystem();

  // The file places.
  void cmdInput1_Click();
  void cmdInput2_Click();
  void cmdOutput_Click();
  void CmdClr1_Click();
  void CmdClr2_Click();
  void CmdClrOut_Click();
  void PictToggle_Click();
  void PictToggle_MouseDown();
  void PictToggle_MouseUp();
  /// "Go", unless something runs already. The job itself is `MergeJob::cmdOK_Click`, which a folder's merge
  /// runs without a button.
  void cmdOK_Click();
  void cmdCancel_Click();
  void ResetSlots();
  void RefreshControls() override;
  void ShowSlotFileName(int index);

  // The menus.
  /// The item, unless something runs already. What it does is `DirectoryMerge::MenuPdfMergeDir_Click`, which
  /// a command line and a dropped folder run too.
  void MenuPdfMergeDir_Click();
  void MenuFilExit_Click();
  void MenuSortLexical_Click();
  void MenuSortLexicalRev_Click();
  void MenuSortByDate_Click();
  void MenuSortByDateRev_Click();
  void MnuLogShow_Click();
  void MnuLogHide_Click();
  void MenuOptViewYes_Click();
  void MenuOptViewNo_Click();
  void MenuTmp0_Click();
  void MenuDefaultTmp0_Click();
  void MenuAboutFolioweld_Click();
  void MenuVarnel_Click();
  void MenuPdfReader_Click();
  void UpdateSortMenu();
  void ApplyLogWindowOption();

  // Drops.
  /// What was dropped on place 0, 1 or 2, or, with any other index, beside the places; `allowed` while
  /// nothing ran and no dialog was open.
  void ProcessOLEDragDrop(int index, const DraggedFiles& files, bool allowed);

  [[nodiscard]] bool Busy() const override { return program_.Merge.JobRunning || program_.ExternalBusy; }
  [[nodiscard]] bool WasActivated() const { return activated_; }
  [[nodiscard]] ProgramState& Program() { return program_; }
  [[nodiscard]] ActivityLog& Log() { return log_; }
  [[nodiscard]] SettingsStore& Settings() { return settings_; }
  [[nodiscard]] LogWindow& TheLogWindow() { return logWindow_; }

  /// Ends the program with the exit status; the event loop's end where nothing else is set.
  std::function<void(int status)> EndProgram;

  std::string ReaderPath;  ///< program associated with PDF files, empty = none
  bool ReaderAvailable = false;
  std::int16_t DropTarget = 0;  ///< the place last dragged over or dropped on; -1 beside the places
  int DesignWidth = 0;          ///< outer size at load, in twips
  int DesignHeight = 0;

 protected:
  void closeEvent(QCloseEvent* event) override;
  void changeEvent(QEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  bool event(QEvent* event) override;

 private:
  void BuildControls();
  void ConnectControls();
  void ConnectMenus();
  void SetTabOrder();
  [[nodiscard]] bool Fits(const TwipGrid& grid) const;
  [[nodiscard]] QSize RoomForClient() const;
  void Arrange();
  void ScrollWhereNeeded(QSize room);
  void CentreOnScreen();
  void RunCommandLine();
  void CatchSystemEnd();

  void RunJob();

  // What a job shows and asks.
  void DisableInputPicking() override;
  void EnterRunningState() override;
  void LeaveRunningState() override;
  void ShowStatusText(int line, const std::string& text) override;
  void ShowOutput(const std::string& path) override;
  void ShowMessage(const BoxRequest& request) override;
  std::string AskForOutputFile(const FileRequest& request) override;
  std::string BrowseForFolder(const FolderRequest& request) override;

  std::string& FileName(int slot) { return program_.Merge.DocFileName(slot); }
  void ChooseInput(int slot, const std::string& ordinal);
  /// Whether the document can be joined. When not, the log says why.
  [[nodiscard]] bool Accepts(const std::string& name, const std::string& logPrefix);
  /// Whether it is taken although it cannot be joined as it is.
  [[nodiscard]] bool IsToBePrepared(const std::string& name);
  void LogLine(const std::string& logPrefix, const std::string& line);
  [[nodiscard]] bool IsInputFile(const std::string& name);
  /// The save dialog with what belongs to it: the default extension, and the question whether an existing
  /// file may be replaced. Empty when the user cancelled.
  [[nodiscard]] std::string ChooseOutputFile(FileRequest request);
  [[nodiscard]] bool MayReplace(const std::string& name);
  void TakeOutput(const std::string& name);
  void Refuse(const std::string& text);
  void SetFileName(int slot, const std::string& name);
  void RefreshInputs();
  void RefreshOutput();
  void RefreshMark(int index, const QString& mark);
  void DisableFileControls();
  void SetEnabled(QWidget* control, bool enabled);
  void FocusNothing();
  void FocusGo();
  void SetDefaultButton(CaptionButton* button);
  void ShowRunningLook(bool running);
  class RunningLookLifted;
  void EnterViewerMode();

  [[nodiscard]] bool TakesDrops() const;
  void ShowDrag(int index, const DraggedFiles& files);
  [[nodiscard]] bool IsFolder(const std::string& path);
  [[nodiscard]] std::string WhyIgnored(const DraggedFiles& files, bool allowed) const;
  void IgnoreDrop(const std::string& reason);
  void DropFolder(const std::string& folder);
  void DropFile(const std::string& path);

  void SetSortOrder(std::int16_t order);
  void SetDisplayOption(bool display);
  void ShowInformation(const std::string& text);
  void ShowBox(BoxIcon icon, const std::string& title, const std::string& text);
  [[nodiscard]] bool AskLeave();
  void Unload();
  void Finish();
  /// Ends the program when that was asked for while a job ran.
  void FinishIfEnding();

  const Arguments arguments_;
  WindowsAPI& system_;
  Dialogs& dialogs_;
  ProgramState program_;
  WindowShell shell_;
  ActivityLog log_;
  FileModule files_;
  SettingsStore settings_;
  MergeJob job_;
  DirectoryMerge directoryMerge_;
  TmpDirectory tmpDirectory_;
  Viewer viewer_;

  Menus menus_;
  LogWindow logWindow_;
  QWidget* client_ = nullptr;
  std::array<FilePlace*, 3> places_{};
  TogglePicture* pictToggle_ = nullptr;
  CaptionButton* cmdOK_ = nullptr;
  CaptionButton* cmdCancel_ = nullptr;
  DropHandling drops_;
  HeldKeys heldKeys_;
  QTimer viewerCollector_;

  bool activated_ = false;
  bool runningLook_ = false;
  bool statusKept_ = false;  ///< the status lines of a finished job are still shown
  bool viewerWatched_ = false;
  bool unloading_ = false;
  bool ending_ = false;  ///< the program ends as soon as what runs has cleaned up
  int exitStatus_ = kEverythingJoined;
};

}  // namespace folioweld
