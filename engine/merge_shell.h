#pragma once

#include <array>
#include <csignal>
#include <cstddef>
#include <cstdint>
#include <string>

namespace folioweld {

struct MergeState;

/// The icon of a message box, and with it the weight of the message.
enum class MessageIcon { Exclamation, Critical, Plain };

/// The kinds of files that the open and save dialogs offer, and the extension that a name without one gets.
inline constexpr char kDialogFilter[] = "PDF Files (*.pdf)|*.pdf|All Files (*.*)|*.*";
inline constexpr char kDialogExtension[] = "pdf";

/// A save dialog's question.
struct OutputQuestion {
  std::string Title;
  std::string DefaultExtension;
  std::string Filter;
  std::string InitialName;
};

/// Which of a directory merge's merges begins; all counts begin at 1.
struct MergeNumber {
  int Merge = 1;
  int Merges = 1;  ///< of all rounds together
  int Round = 1;
  int Rounds = 1;
};

/// What a running job shows and asks. The base class keeps the status lines and does nothing else, so that
/// a job runs without anybody watching. The window, the windowless run and the tests implement it. Every
/// call is made on the one thread of the program.
class MergeShell {
 public:
  MergeShell() = default;
  MergeShell(const MergeShell&) = delete;
  MergeShell& operator=(const MergeShell&) = delete;
  virtual ~MergeShell() = default;

  /// Lets pending events be handled; a cancel becomes visible in `MergeState::AbortRequested` here. Called
  /// for every line read, so it costs no call where a flag says that nothing is waiting.
  void Yield() {
    if (waiting_ == nullptr || *waiting_ != 0) HandleEvents();
  }

  /// A status line that grows beyond this many bytes loses its beginning: it gets longer with every section
  /// of a document, and a hundred thousand of them would cost the square of their number.
  static constexpr std::size_t kLongestStatusText = 8192;

  /// The status lines (`txtDoing`): 0 = first input, 1 = second input, 2 = output.
  [[nodiscard]] const std::string& StatusText(int line) const;
  void SetStatusText(int line, std::string text);
  void AppendStatusText(int line, const std::string& text);

  /// The file names changed.
  virtual void RefreshControls() {}
  /// Locks the two input-picking buttons while the inputs are opened.
  virtual void DisableInputPicking() {}
  /// "CANCEL (abort)", hourglass, Go locked.
  virtual void EnterRunningState() {}
  /// "Exit", ordinary pointer, Go and the input-picking buttons unlocked.
  virtual void LeaveRunningState() {}

  /// A directory merge joins the next two files; `document` is the first one of the second input.
  virtual void MergeStarts(const MergeNumber& number, const std::string& document);

  /// Of so many documents that are prepared before a directory merge, this one begins; `number` begins at 1.
  virtual void PreparingStarts(int number, int documents, const std::string& document);

  /// What the documents' catalogs hold is carried over into the output of that name.
  virtual void CarryingStarts(const std::string& output);

  /// A message box; comes back when it was answered.
  virtual void ShowMessage(MessageIcon icon, const std::string& title, const std::string& text);
  /// A save dialog; empty = cancelled.
  virtual std::string AskForOutputFile(const OutputQuestion& question);
  /// A folder picker; empty = cancelled.
  virtual std::string BrowseForFolder(const std::string& title, const std::string& initialFolder);
  /// Shows the finished output and waits for it as the user chose.
  virtual void ShowOutput(const std::string& path);

  /// A line about a refused document or a failed merge, whether or not the log is shown.
  virtual void Notice(const std::string& line);
  /// A line was added to the activity log.
  virtual void LogLineAdded(const std::string& line);

 protected:
  /// Handles what is waiting, if anything is.
  virtual void HandleEvents() {}

  /// From now on events are handled only while the flag, which has to outlive the shell, is not 0.
  void HandleEventsOnlyWhile(const volatile std::sig_atomic_t& waiting) { waiting_ = &waiting; }

  /// A status line changed.
  virtual void StatusTextChanged(int line);

 private:
  void TakeChange(int line);

  std::array<std::string, 3> statusTexts_;
  const volatile std::sig_atomic_t* waiting_ = nullptr;
};

/// Lets pending events be handled, twice, and tells whether the user cancelled. Long loops call it once a
/// round and end as failed when it is true.
[[nodiscard]] bool YieldAndCheckAbort(MergeShell& shell, const MergeState& state);

}  // namespace folioweld
