#pragma once

#include <cstdint>
#include <string>

namespace folioweld {

/// The title of the program's message boxes.
inline constexpr char kBoxTitle[] = "Folioweld";

enum class BoxIcon { Plain, Information, Question, Exclamation, Critical };

/// A message box. Lines are joined with CR LF or CR. With `YesNo` it is a question whose default is No.
struct BoxRequest {
  BoxIcon Icon = BoxIcon::Plain;
  std::string Title;
  std::string Text;
  bool YesNo = false;
};

/// An open or save dialog. `Filter` is a list of "name (pattern)|pattern" pairs, joined with "|".
struct FileRequest {
  std::string Title;
  std::string DefaultExtension;
  std::string Filter;
  std::string InitialName;
};

struct FolderRequest {
  std::string Title;
  std::string InitialFolder;
};

/// Every question that the window asks. The real one shows dialogs; the tests answer in their place and see
/// what was asked. Each call comes back when it was answered. Paths are bytes; an empty one means that the
/// user cancelled.
class Dialogs {
 public:
  Dialogs() = default;
  Dialogs(const Dialogs&) = delete;
  Dialogs& operator=(const Dialogs&) = delete;
  virtual ~Dialogs() = default;

  /// True when the answer was Yes; a box without a question gives false.
  virtual bool ShowBox(const BoxRequest& request) = 0;
  /// An existing file. A name without an extension stands for one with it where there is no such file.
  virtual std::string AskOpenFile(const FileRequest& request) = 0;
  /// A file to be written, as typed: no extension is added, and nothing is asked when the file exists.
  virtual std::string AskSaveFile(const FileRequest& request) = 0;
  virtual std::string AskFolder(const FolderRequest& request) = 0;
  /// The order of a directory merge (1, -1, 2 or -2), preset with the current one.
  virtual std::int16_t AskSortOrder(std::int16_t current) = 0;

  /// Takes every open dialog away as cancelled and shows no further one: the program ends.
  virtual void CloseAll() = 0;
};

}  // namespace folioweld
