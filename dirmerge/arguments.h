#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "dirmerge/carry_choices.h"

namespace folioweld {

/// How the program is called to join without a window.
inline constexpr char kUsage[] = "folioweld [OPTION]... [--] OUTPUT SOURCE...";

/// Between the output and the folder of a command line.
inline constexpr char kBar = '|';

/// When the progress of a run is drawn on the terminal.
enum class ProgressChoice {
  Auto,  ///< on a terminal, while the program is in its foreground
  Never,
  Always  ///< wherever standard error leads
};

/// What the arguments of a start ask for. Parsing asks the system nothing: whether a source exists is seen
/// when the documents are listed.
struct Arguments {
  enum class Wish {
    OpenWindow,
    JoinFolder,   ///< `FolderText` has the form "OUTPUT|FOLDER", where OUTPUT may be empty
    JoinSources,  ///< `Sources`, and those named in `SourcesFile`, into `Output`
    ShowHelp,
    ShowVersion,
    Refuse  ///< `Problem` says why
  };
  Wish Asked = Wish::OpenWindow;
  std::string Text;     ///< all arguments with blanks between them, as the log shows them
  std::string Problem;  ///< one line
  std::string FolderText;
  std::string Output;  ///< as written; empty = the window program asks for it
  std::vector<std::string> Sources;
  std::optional<std::string> SourcesFile;  ///< more sources, each ended by a NUL; "-" = standard input

  // Choices for this run only; what is not chosen stays as the settings have it.
  std::optional<std::int16_t> SortOrder;
  bool Prepare = false;  ///< with any of the above but an answer; also for a window
  CarryChoices Carry;    ///< likewise
  bool Verbose = false;
  bool Quiet = false;
  ProgressChoice Progress = ProgressChoice::Auto;

  /// What is to be carried over: in a window that prepares documents, too, which joins any of them.
  [[nodiscard]] CarryChoices CarryHere() const;

  /// Whether the output is named, so that no question is left and no screen is needed.
  [[nodiscard]] bool RunsWithoutScreen() const;
};

/// `arguments` without the program's name. An only argument that holds a "|" is taken before any option;
/// options end at the first operand, so that a source called "--help" is a source.
[[nodiscard]] Arguments ParseArguments(const std::vector<std::string>& arguments);

/// What "--help" prints, on one screen of 24 lines.
[[nodiscard]] std::string HelpText();
/// What "--version" prints.
[[nodiscard]] std::string VersionText();

}  // namespace folioweld
