#include "prepare/carry/carry_arguments.h"

#include <array>
#include <string_view>
#include <utility>

#include "prepare/libqpdf.h"
#include "prepare/number_lists.h"

namespace folioweld {

namespace {

using CarryWish = CarryArguments::Wish;

constexpr std::array<std::pair<std::string_view, Bookmarks>, 4> kBookmarks = {
    {{"both", Bookmarks::Both},
     {"documents", Bookmarks::Documents},
     {"own", Bookmarks::Own},
     {"none", Bookmarks::None}}};

/// Programs write these arguments: each option has its value after a "=", and there is nothing else.
class CarryParser {
 public:
  CarryArguments Run(const std::vector<std::string>& words) {
    for (const std::string& word : words) {
      if (word == "--help" || word == "--version") {
        result_.Asked = word == "--help" ? CarryWish::ShowHelp : CarryWish::ShowVersion;
        return std::move(result_);
      }
      const std::size_t equals = word.find('=');
      if (equals == std::string::npos || !Take(word.substr(0, equals), word.substr(equals + 1))) {
        result_.Problem = "the option \"" + word + "\" is unknown or cannot be used like this";
        return std::move(result_);
      }
    }
    if (result_.Joined < 0) {
      result_.Problem = "--descriptors is needed";
    } else {
      result_.Asked = CarryWish::Append;
    }
    return std::move(result_);
  }

 private:
  bool Take(std::string_view option, std::string value) {
    if (option == "--descriptors") return TakeDescriptors(value);
    if (option == "--bookmarks") return TakeBookmarks(value);
    if (option == "--limits") {
      result_.Limits = LimitsOf(value);
      return result_.Limits.has_value();
    }
    if (option != "--title") return false;
    result_.Title = std::move(value);
    return true;
  }

  bool TakeDescriptors(std::string_view value) {
    const std::vector<WindowsAPI::Handle> handles = HandlesOf(value);
    if (handles.size() != 2) return false;
    result_.Joined = handles[0];
    result_.List = handles[1];
    return true;
  }

  bool TakeBookmarks(std::string_view value) {
    for (const auto& [word, bookmarks] : kBookmarks) {
      if (word != value) continue;
      result_.Shown = bookmarks;
      return true;
    }
    return false;
  }

  CarryArguments result_;
};

}  // namespace

CarryArguments ParseCarryArguments(const std::vector<std::string>& arguments) {
  return CarryParser().Run(arguments);
}

std::string CarryHelpText() {
  return
      R"(Usage: folioweld-carry --descriptors=JOINED,LIST [OPTION]...
Appends to a file that folioweld has joined what the catalogs of the joined
documents hold: outlines, forms, named destinations, page labels, layers.
folioweld --carry starts it; there is no reason to do so by hand.

      --descriptors=JOINED,LIST          numbers of the open files: the joined
                                         one, and the list of its documents
      --limits=MEMORY,SECONDS,FILESIZE   bytes of memory, seconds of processor
                                         time, bytes of the file
      --bookmarks=both|documents|own|none
                                         what the outline holds: an entry for
                                         each document, the documents' own
                                         items, both, or the first one's
      --title=TEXT                       the title of the joined file
      --help                             show this text
      --version                          show the version

What was done and lost is told on standard error.

Exit status: 0 everything carried over, 3 not everything, 1 nothing, and the
file has to be cut to its length before, 2 not understood.
)";
}

std::string CarryVersionText() {
  return "folioweld-carry " FOLIOWELD_VERSION " with libqpdf " + QPDF::QPDFVersion() + "\n";
}

}  // namespace folioweld
