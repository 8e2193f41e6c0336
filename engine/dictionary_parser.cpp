// The dictionary parser of PdfReader: texts to rows of NameEntries.

#include <algorithm>
#include <exception>
#include <stdexcept>
#include <type_traits>

#include "engine/character_set.h"
#include "engine/conversions.h"
#include "engine/pdf_reader.h"
#include "engine/pdf_scanner.h"

namespace folioweld {

using namespace Conversions;

namespace {

constexpr std::int16_t kDeepestNesting = 100;
/// Keys of one dictionary between two looks at the user's wishes.
constexpr std::int32_t kKeysPerYield = 1000;
/// What counts on the way to a key, and within a value; everything else is passed over.
constexpr CharacterSet kKeyMarks{"/(%"};
constexpr CharacterSet kValueMarks{"/(<[>]%"};

/// Counts the nesting of the parser for as long as it lives.
class DepthCount {
 public:
  explicit DepthCount(MergeState& state) : state_(state) { ++state_.DictDepth; }
  DepthCount(const DepthCount&) = delete;
  DepthCount& operator=(const DepthCount&) = delete;
  ~DepthCount() { --state_.DictDepth; }

 private:
  MergeState& state_;
};

bool IsDictionaryText(std::string_view text) {
  return text.size() >= 4 && text.substr(0, 2) == "<<" && text.substr(text.size() - 2) == ">>";
}

/// Where the last line end of the text stands. A "%" behind it opens no comment, because trailer lines are
/// joined without line ends. Looked up once for a dictionary: a search from every "%" would take the square
/// of the text's length.
std::size_t FindLastLineEnd(std::string_view text) {
  // Nobody asks for it where there is no "%".
  if (text.find('%') == std::string_view::npos) return 0;
  const std::size_t last = text.find_last_of(kLineEnd);
  return last == std::string_view::npos ? 0 : last;
}

bool OpensComment(std::string_view text, std::size_t index, std::size_t lastLineEnd) {
  return text[index] == '%' && index < lastLineEnd;
}

/// Index behind white space and comments.
std::size_t SkipBlanksAndComments(std::string_view text, std::size_t index, std::size_t lastLineEnd) {
  while (index < text.size()) {
    if (kWhiteSpaceSet.Has(text[index])) {
      ++index;
    } else if (OpensComment(text, index, lastLineEnd)) {
      index = SkipComment(text, index);
    } else {
      break;
    }
  }
  return index;
}

/// 0-based index of the "/" that begins the next key; what stands before it and is no key is passed over.
std::size_t FindKeyStart(std::string_view text, std::size_t index, std::size_t lastLineEnd) {
  for (;;) {
    index = kKeyMarks.Find(text, index);
    if (index == text.size() || text[index] == '/') break;
    if (OpensComment(text, index, lastLineEnd)) {
      index = SkipComment(text, index);
    } else {
      index = text[index] == '(' ? SkipLiteralString(text, index) : index + 1;
    }
  }
  return index;
}

/// Walks the value of one key and finds its end; comments inside are left out of what it collects.
class ValueScan {
 public:
  ValueScan(std::string_view text, std::size_t start, std::size_t lastLineEnd)
      : text_(text), start_(start), end_(start), lastLineEnd_(lastLineEnd) {}

  /// Runs to the next "/" outside strings, arrays and dictionaries, or to the end of the text.
  void Run() {
    if (end_ < text_.size() && text_[end_] == '/') {
      // The value is or begins with a name.
      end_ = kDelimiterSet.Find(text_, end_ + 1);
    }
    for (;;) {
      end_ = kValueMarks.Find(text_, end_);
      if (end_ == text_.size() || (depth_ == 0 && text_[end_] == '/')) break;
      Step();
    }
  }

  [[nodiscard]] std::size_t End() const { return end_; }

  [[nodiscard]] bool HoldsComments() const { return pieceStart_ != 0; }

  /// The value when it holds no comment.
  [[nodiscard]] std::string_view Plain() const { return text_.substr(start_, end_ - start_); }

  /// The value without its comments.
  [[nodiscard]] std::string WithoutComments() const {
    return pieces_ + std::string(text_.substr(pieceStart_, end_ - pieceStart_));
  }

 private:
  [[nodiscard]] bool PairAt(char c) const {
    return text_[end_] == c && end_ + 1 < text_.size() && text_[end_ + 1] == c;
  }

  void Step() {
    switch (text_[end_]) {
      case '(':
        end_ = SkipLiteralString(text_, end_);
        return;
      case '<':
        if (!PairAt('<')) {
          end_ = SkipHexString(text_, end_);
          return;
        }
        ++depth_;
        end_ += 2;
        return;
      case '[':
        ++depth_;
        break;
      case '>':
        if (PairAt('>')) {
          Leave();
          ++end_;
        }
        break;
      case ']':
        Leave();
        break;
      case '%':
        StepOverComment();
        return;
      default:
        break;
    }
    ++end_;
  }

  void Leave() {
    if (depth_ > 0) --depth_;
  }

  void StepOverComment() {
    if (!OpensComment(text_, end_, lastLineEnd_)) {
      ++end_;
      return;
    }
    const std::size_t behind = SkipComment(text_, end_);
    pieces_ += text_.substr(PieceStart(), end_ - PieceStart());
    pieceStart_ = behind;
    end_ = behind;
  }

  [[nodiscard]] std::size_t PieceStart() const { return pieceStart_ == 0 ? start_ : pieceStart_; }

  std::string_view text_;
  std::size_t start_;
  std::size_t end_;
  std::size_t lastLineEnd_;
  std::size_t depth_ = 0;
  std::string pieces_;
  std::size_t pieceStart_ = 0;
};

}  // namespace

std::int32_t PdfReader::JoinAndParseDictionary(const Table<std::string>& lines, std::int32_t first,
                                               std::int32_t last) {
  return JoinAndParse(lines, first, last);
}

std::int32_t PdfReader::JoinAndParseDictionary(const Table<PooledText>& lines, std::int32_t first,
                                               std::int32_t last) {
  return JoinAndParse(lines, first, last);
}

template <typename Line>
std::int32_t PdfReader::JoinAndParse(const Table<Line>& lines, std::int32_t first, std::int32_t last) {
  if (first < 0 || last > lines.UpperBound() || first > last) return -1;
  try {
    std::int32_t firstEntry = -1;
    if constexpr (std::is_same_v<Line, PooledText>) {
      if (first == last) {
        // The usual case: the text is kept already.
        ParseDictionary(TrimBlanks(lines[first]), 1, firstEntry);
        return firstEntry;
      }
    }
    std::string joined;
    for (std::int32_t i = first; i <= last; ++i) joined += std::string_view(lines[i]);
    ParseDictionary(state_.Texts.Keep(TrimBlanks(joined)), 1, firstEntry);
    return firstEntry;
  } catch (const std::exception&) {
    return -1;
  }
}

std::int32_t PdfReader::ParseDictionary(std::string_view text, std::int32_t start, std::int32_t& firstEntry) {
  firstEntry = -1;
  shell_.Yield();
  const DepthCount depth(state_);
  if (state_.AbortRequested || state_.DictDepth > kDeepestNesting) return -1;
  return ParseDictionaryText(text, start, firstEntry);
}

std::int32_t PdfReader::ParseDictionaryText(std::string_view text, std::int32_t start,
                                            std::int32_t& firstEntry) {
  if (start < 1) throw std::invalid_argument("a text position starts at 1");
  const std::size_t begin = kWhiteSpaceSet.Skip(text, static_cast<std::size_t>(start) - 1);
  if (begin >= text.size()) return -1;
  std::size_t end = text.size();
  while (end > begin && text[end - 1] == ' ') --end;
  const std::string_view dictionary = text.substr(begin, end - begin);
  if (!IsDictionaryText(dictionary)) return -1;
  const std::string_view inner = dictionary.substr(2, dictionary.size() - 4);
  if (inner.find('/') == std::string_view::npos) return TrimBlanks(inner).empty() ? 0 : -1;
  const std::int32_t position = ParseDictionaryEntries(inner, firstEntry);
  if (position == 0) return 0;
  // A non-zero value in any case: the inner text begins two characters behind the start.
  return position + static_cast<std::int32_t>(begin) + 2;
}

std::int32_t PdfReader::ParseDictionaryEntries(std::string_view inner, std::int32_t& firstEntry) {
  const std::size_t lastLineEnd = FindLastLineEnd(inner);
  std::int32_t position = 1;
  std::int32_t previous = -1;
  std::int32_t countdown = kKeysPerYield;
  while (position >= 1) {
    if (--countdown == 0) {
      shell_.Yield();
      if (state_.AbortRequested) break;
      countdown = kKeysPerYield;
    }
    std::int32_t next = 0;
    const std::int32_t entry = ParseDictionaryEntry(inner, lastLineEnd, position, next);
    position = next;
    if (entry < 0) break;
    if (previous < 0) {
      firstEntry = entry;
    } else {
      state_.NameEntries[previous].NameId = entry;
    }
    previous = entry;
  }
  return position;
}

std::int32_t PdfReader::AppendNameEntry() {
  const std::int32_t index = state_.NameEntryCount;
  if (index > state_.NameEntries.UpperBound()) {
    state_.NameEntries.Grow(CheckedAdd(index, 63));
  }
  state_.NameEntryCount = index + 1;
  return index;
}

/// Reads the key and value at a 1-based position of the inner text. `next` becomes where the next key
/// begins, 0 when the text is used up. Returns the row, -1 when no key is left.
std::int32_t PdfReader::ParseDictionaryEntry(std::string_view inner, std::size_t lastLineEnd,
                                             std::int32_t position, std::int32_t& next) {
  next = 0;
  const std::size_t keyStart = FindKeyStart(inner, static_cast<std::size_t>(position) - 1, lastLineEnd);
  if (keyStart >= inner.size()) return -1;
  const std::size_t keyEnd = kDelimiterSet.Find(inner, keyStart + 1);
  ValueScan scan(inner, SkipBlanksAndComments(inner, keyEnd, lastLineEnd), lastLineEnd);
  scan.Run();

  const std::int32_t entry = AppendNameEntry();
  const std::string_view value =
      TrimBlanks(scan.HoldsComments() ? state_.Texts.Keep(scan.WithoutComments()) : scan.Plain());
  NameEntry& row = state_.NameEntries[entry];
  row.NameText = inner.substr(keyStart, keyEnd - keyStart);
  row.NameValue = value;
  if (value.substr(0, 2) == "<<") {
    std::int32_t nested = -1;
    ParseDictionary(value, 1, nested);
    if (nested >= 0) {
      state_.NameEntries[entry].NameFlag = 1;
      state_.NameEntries[entry].NameRef = nested;
    }
  }
  if (scan.End() < inner.size()) next = static_cast<std::int32_t>(scan.End()) + 1;
  return entry;
}

}  // namespace folioweld
