#include "prepare/prepare_arguments.h"

#include <array>
#include <getopt.h>
#include <utility>

#include "prepare/libqpdf.h"
#include "prepare/number_lists.h"

namespace folioweld {

namespace {

using PrepareWish = PrepareArguments::Wish;

// Long options without a letter of their own.
enum LongOption : int { kPasswordFile = 256, kDescriptors, kLimits };

constexpr std::array kOptions = {option{"password-file", required_argument, nullptr, kPasswordFile},
                                 option{"descriptors", required_argument, nullptr, kDescriptors},
                                 option{"limits", required_argument, nullptr, kLimits},
                                 option{"help", no_argument, nullptr, 'h'},
                                 option{"version", no_argument, nullptr, 'V'},
                                 option{nullptr, 0, nullptr, 0}};

class PrepareParser {
 public:
  explicit PrepareParser(const std::vector<std::string>& arguments) : words_(arguments) {
    words_.insert(words_.begin(), "folioweld-prepare");
    for (std::string& word : words_) pointers_.push_back(word.data());
    pointers_.push_back(nullptr);
  }

  PrepareArguments Run() {
    // 0 and not 1: the C library begins anew, whatever it parsed before.
    optind = 0;
    opterr = 0;
    for (;;) {
      const int current = optind == 0 ? 1 : optind;
      const auto count = static_cast<int>(words_.size());
      const int code = getopt_long(count, pointers_.data(), "+:hV", kOptions.data(), nullptr);
      if (code == -1) break;
      if (!Take(code, words_[static_cast<std::size_t>(current)])) return std::move(result_);
    }
    TakeOperands();
    return std::move(result_);
  }

 private:
  bool Refuse(std::string problem) {
    result_.Asked = PrepareWish::Refuse;
    result_.Problem = std::move(problem);
    return false;
  }

  /// False when nothing that follows matters.
  bool Take(int code, const std::string& word) {
    switch (code) {
      case kPasswordFile:
        result_.PasswordFile = optarg;
        return true;
      case kDescriptors:
        return TakeDescriptors();
      case kLimits:
        return TakeLimits();
      case 'h':
        result_.Asked = PrepareWish::ShowHelp;
        return false;
      case 'V':
        result_.Asked = PrepareWish::ShowVersion;
        return false;
      case ':':
        return Refuse("the option \"" + word + "\" needs a value");
      default:
        return Refuse("the option \"" + word + "\" is unknown or cannot be used like this");
    }
  }

  bool TakeDescriptors() {
    const std::vector<WindowsAPI::Handle> handles = HandlesOf(optarg);
    if (handles.size() != 2) return Refuse("--descriptors is the numbers of two open files");
    result_.InputHandle = handles[0];
    result_.OutputHandle = handles[1];
    return true;
  }

  bool TakeLimits() {
    result_.Limits = LimitsOf(optarg);
    if (!result_.Limits) return Refuse("--limits is bytes of memory, seconds and bytes of the copy");
    return true;
  }

  void TakeOperands() {
    const std::vector<std::string> operands(words_.begin() + optind, words_.end());
    const bool hasHandles = result_.InputHandle >= 0;
    result_.Asked = hasHandles ? PrepareWish::CopyHandles : PrepareWish::CopyPaths;
    if (hasHandles && !operands.empty()) {
      Refuse("with --descriptors there is no INPUT and no OUTPUT");
    } else if (!hasHandles && operands.size() != 2) {
      Refuse("an INPUT and an OUTPUT are needed, and nothing else");
    } else if (!hasHandles) {
      result_.Input = operands[0];
      result_.Output = operands[1];
    }
  }

  std::vector<std::string> words_;
  std::vector<char*> pointers_;
  PrepareArguments result_;
};

}  // namespace

PrepareArguments ParsePrepareArguments(const std::vector<std::string>& arguments) {
  return PrepareParser(arguments).Run();
}

std::string PrepareHelpText() {
  return
      R"(Usage: folioweld-prepare [OPTION]... INPUT OUTPUT
Writes a copy of the PDF document INPUT to OUTPUT, in the plain form that
folioweld joins: without compressed tables, without protection. Pages and all
that belongs to them stay as they are.

      --password-file=FILE  the first line of FILE is the password of INPUT
      --help                show this text
      --version             show the version

What was done, repaired and lost is told on standard error. OUTPUT appears
whole or not at all.

Exit status: 0 written, 3 written with repairs, 1 not written, 2 not understood.
)";
}

std::string PrepareVersionText() {
  return "folioweld-prepare " FOLIOWELD_VERSION " with libqpdf " + QPDF::QPDFVersion() + "\n";
}

}  // namespace folioweld
