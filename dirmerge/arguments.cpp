#include "dirmerge/arguments.h"

#include <algorithm>
#include <array>
#include <getopt.h>
#include <iterator>
#include <utility>

#include "engine/settings_text.h"

namespace folioweld {

namespace {

using Wish = Arguments::Wish;

// Long options without a letter of their own.
enum LongOption : int { kOrder = 256, kProgress, kFiles0From, kPrepare, kCarry, kBookmarks, kTitle };

constexpr std::array kLongOptions = {option{"order", required_argument, nullptr, kOrder},
                                     option{"verbose", no_argument, nullptr, 'v'},
                                     option{"quiet", no_argument, nullptr, 'q'},
                                     option{"progress", required_argument, nullptr, kProgress},
                                     option{"files0-from", required_argument, nullptr, kFiles0From},
                                     option{"prepare", no_argument, nullptr, kPrepare},
                                     option{"carry", no_argument, nullptr, kCarry},
                                     option{"bookmarks", required_argument, nullptr, kBookmarks},
                                     option{"title", required_argument, nullptr, kTitle},
                                     option{"help", no_argument, nullptr, 'h'},
                                     option{"version", no_argument, nullptr, 'V'},
                                     option{nullptr, 0, nullptr, 0}};
/// "+": options end at the first operand. ":": a missing value is told apart from an unknown option.
constexpr char kShortOptions[] = "+:vqhV";

constexpr std::pair<const char*, std::int16_t> kOrders[] = {
    {"name", 1}, {"name-reversed", -1}, {"date", 2}, {"date-reversed", -2}};
constexpr std::pair<const char*, ProgressChoice> kProgressChoices[] = {
    {"auto", ProgressChoice::Auto}, {"never", ProgressChoice::Never}, {"always", ProgressChoice::Always}};

constexpr const char* kBookmarkChoices[] = {"documents", "own", "both", "none"};

/// The choice of that name; nothing for another word.
template <typename Choices>
auto Chosen(const Choices& choices, const std::string& name) -> std::optional<decltype(choices[0].second)> {
  for (const auto& [word, value] : choices) {
    if (name == word) return value;
  }
  return std::nullopt;
}

bool HoldsBar(const std::string& text) {
  return text.find(kBar) != std::string::npos;
}

class Parser {
 public:
  explicit Parser(const std::vector<std::string>& arguments) : words_(arguments) {
    words_.insert(words_.begin(), "folioweld");
    for (std::string& word : words_) pointers_.push_back(word.data());
    pointers_.push_back(nullptr);
  }

  Arguments Run() {
    // 0 and not 1: the C library begins anew, whatever it parsed before.
    optind = 0;
    opterr = 0;
    while (result_.Asked == Wish::OpenWindow) {
      const int current = optind == 0 ? 1 : optind;
      const int code = getopt_long(Count(), pointers_.data(), kShortOptions, kLongOptions.data(), nullptr);
      if (code == -1) break;
      TakeOption(code, words_[static_cast<std::size_t>(current)]);
    }
    if (result_.Asked == Wish::OpenWindow) CheckCarry();
    if (result_.Asked == Wish::OpenWindow) TakeOperands();
    return std::move(result_);
  }

 private:
  [[nodiscard]] int Count() const { return static_cast<int>(words_.size()); }

  void Refuse(std::string problem) {
    result_.Asked = Wish::Refuse;
    result_.Problem = std::move(problem);
  }

  void TakeOption(int code, const std::string& word) {
    const std::string value = optarg == nullptr ? std::string() : optarg;
    switch (code) {
      case kOrder:
        result_.SortOrder = Chosen(kOrders, value);
        if (!result_.SortOrder) Refuse("--order is name, name-reversed, date or date-reversed");
        break;
      case kProgress:
        TakeProgress(value);
        break;
      case kFiles0From:
        result_.SourcesFile = value;
        return;
      case kPrepare:
        result_.Prepare = true;
        return;
      case kCarry:
        result_.Carry.Wanted = true;
        return;
      case kBookmarks:
        return TakeBookmarks(value);
      case kTitle:
        return TakeTitle(value);
      case 'v':
      case 'q':
        result_.Verbose = code == 'v';
        result_.Quiet = code == 'q';
        break;
      case 'h':
        result_.Asked = Wish::ShowHelp;
        break;
      case 'V':
        result_.Asked = Wish::ShowVersion;
        break;
      case ':':
        Refuse("the option \"" + word + "\" needs a value");
        break;
      default:
        Refuse("the option \"" + word + "\" is unknown or cannot be used like this");
    }
    hasChoices_ = true;
  }

  void TakeProgress(const std::string& value) {
    const auto choice = Chosen(kProgressChoices, value);
    if (!choice) return Refuse("--progress is auto, never or always");
    result_.Progress = *choice;
  }

  void TakeBookmarks(const std::string& value) {
    const bool known = std::find(std::begin(kBookmarkChoices), std::end(kBookmarkChoices), value) !=
                       std::end(kBookmarkChoices);
    if (!known) return Refuse("--bookmarks is documents, own, both or none");
    result_.Carry.Bookmarks = value;
  }

  void TakeTitle(const std::string& value) {
    if (!IsUtf8(value)) return Refuse("--title is no text in UTF-8");
    result_.Carry.Title = value;
  }

  void CheckCarry() {
    const CarryChoices& carry = result_.Carry;
    if (carry.Wanted || (carry.Bookmarks.empty() && !carry.Title)) return;
    Refuse("--bookmarks and --title need --carry");
  }

  void TakeOperands() {
    const auto first = words_.begin() + optind;
    const auto count = words_.end() - first;
    if (count == 0) {
      if (result_.SourcesFile) return Refuse("--files0-from needs an OUTPUT");
      if (hasChoices_) Refuse("an OUTPUT and a SOURCE are missing");
      return;
    }
    if (count == 1 && !result_.SourcesFile) {
      if (!HoldsBar(*first)) return;
      result_.FolderText = *first;
      result_.Asked = Wish::JoinFolder;
      return;
    }
    result_.Asked = Wish::JoinSources;
    result_.Output = *first;
    result_.Sources.assign(first + 1, words_.end());
  }

  std::vector<std::string> words_;
  std::vector<char*> pointers_;
  Arguments result_;
  bool hasChoices_ = false;  ///< options that mean something for a join only
};

}  // namespace

bool Arguments::RunsWithoutScreen() const {
  switch (Asked) {
    case Wish::OpenWindow:
      return false;
    case Wish::JoinFolder:
      return FolderText.front() != kBar;
    case Wish::JoinSources:
      return !Output.empty();
    default:
      return true;
  }
}

CarryChoices Arguments::CarryHere() const {
  CarryChoices choices = Carry;
  choices.Wanted = Carry.Wanted || (Prepare && Asked == Wish::OpenWindow);
  return choices;
}

Arguments ParseArguments(const std::vector<std::string>& arguments) {
  Arguments result;
  if (arguments.size() == 1 && HoldsBar(arguments[0])) {
    result.Asked = Wish::JoinFolder;
    result.FolderText = arguments[0];
  } else {
    result = Parser(arguments).Run();
  }
  for (const std::string& argument : arguments) {
    if (&argument != &arguments[0]) result.Text += ' ';
    result.Text += argument;
  }
  return result;
}

std::string HelpText() {
  return std::string("Usage: ") + kUsage + R"(
Joins PDF documents into the file OUTPUT, in the order given. A SOURCE is a
document, or a folder, whose documents are joined in the order of their names.
Without an OUTPUT and a SOURCE the window opens. "OUTPUT|FOLDER" works, too.

  --order=ORDER       of a folder: name, name-reversed, date or date-reversed
  --files0-from=FILE  more sources, each ended by a NUL; - is standard input
  --prepare           make joinable first what is not (folioweld-extras)
  --carry             keep the outlines and forms of all (folioweld-extras)
  --bookmarks=WHICH   with --carry: documents, own, both or none
  --title=TEXT        with --carry: the title of OUTPUT
  -v, --verbose       print the log
  -q, --quiet         no progress, and no word where everything is joined
  --progress=WHEN     auto (on a terminal), never or always
  -h, --help; -V, --version   print this; print the version

Exit status:
  0  every document is in OUTPUT, as it was
  1  there is no OUTPUT
  2  the command line cannot be served
  3  OUTPUT lacks a document, or one was altered; standard error says which
A run that a signal ends leaves no temporary files and ends by that signal.

Example: folioweld book.pdf cover.pdf chapters/ index.pdf
)";
}

std::string VersionText() {
  return "folioweld " FOLIOWELD_VERSION "\n";
}

}  // namespace folioweld
