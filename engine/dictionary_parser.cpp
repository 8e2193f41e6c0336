// The dictionary parser of PdfReader: texts to rows of NameEntries.

#include <string>
#include <type_traits>
#include <vector>

#include "engine/lexer.h"
#include "engine/pdf_reader.h"

namespace folioweld {

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

/// Where comments begin. A "%" after the last line end of the text opens none, because trailer lines are
/// joined without line ends. The last line end is looked up once for a dictionary: a search from every "%"
/// would take the square of the text's length.
class CommentStarts {
 public:
  explicit CommentStarts(std::string_view text) : text_(text) {}

  /// Whether the "%" at `index` opens a comment.
  [[nodiscard]] bool Has(std::size_t index) {
    if (lastLineEnd_ == kNotLookedUp) {
      const std::size_t last = text_.find_last_of(kLineEnd);
      lastLineEnd_ = last == std::string_view::npos ? 0 : last;
    }
    return index < lastLineEnd_;
  }

 private:
  static constexpr std::size_t kNotLookedUp = std::string_view::npos;

  std::string_view text_;
  std::size_t lastLineEnd_ = kNotLookedUp;
};

/// Walks the text between the brackets of one dictionary from key to key.
class EntryWalk {
 public:
  explicit EntryWalk(std::string_view text) : text_(text), commentStarts_(text) {}

  /// Goes to the next key and its value; what stands before the key and is none is passed over. False when no
  /// key is left.
  [[nodiscard]] bool Next() {
    const std::size_t key = FindKey(index_);
    if (key == text_.size()) return false;
    const std::size_t afterKey = SkipName(text_, key);
    key_ = Between(key, afterKey);
    comments_.clear();
    valueStart_ = SkipBlanksAndComments(afterKey);
    index_ = FindValueEnd(valueStart_);
    return true;
  }

  /// Of the last key, with its "/".
  [[nodiscard]] std::string_view Key() const { return key_; }
  /// Begins with no white space.
  [[nodiscard]] std::string_view Value() const { return Between(valueStart_, index_); }
  [[nodiscard]] bool ValueHoldsComments() const { return !comments_.empty(); }

  [[nodiscard]] std::string ValueWithoutComments() const {
    std::string value;
    std::size_t start = valueStart_;
    for (const Comment& comment : comments_) {
      value += Between(start, comment.Start);
      start = comment.End;
    }
    return value += Between(start, index_);
  }

  /// 0-based index after the last value.
  [[nodiscard]] std::size_t Index() const { return index_; }
  [[nodiscard]] bool AtEnd() const { return index_ == text_.size(); }

 private:
  struct Comment {
    std::size_t Start = 0;
    std::size_t End = 0;
  };

  [[nodiscard]] std::string_view Between(std::size_t start, std::size_t end) const {
    return {text_.data() + start, end - start};
  }

  [[nodiscard]] bool PairAt(std::size_t index) const {
    return index + 1 < text_.size() && text_[index + 1] == text_[index];
  }

  /// Index of the "/" that begins the next key; the text's size when there is none.
  [[nodiscard]] std::size_t FindKey(std::size_t index) {
    for (;;) {
      index = kKeyMarks.Find(text_, index);
      if (index == text_.size() || text_[index] == '/') return index;
      if (text_[index] == '(') {
        index = SkipLiteralString(text_, index);
      } else {
        index = commentStarts_.Has(index) ? SkipComment(text_, index) : index + 1;
      }
    }
  }

  [[nodiscard]] std::size_t SkipBlanksAndComments(std::size_t index) {
    for (;;) {
      index = kWhiteSpaceSet.Skip(text_, index);
      if (index == text_.size() || text_[index] != '%' || !commentStarts_.Has(index)) return index;
      index = SkipComment(text_, index);
    }
  }

  /// Index of the next "/" outside strings, arrays and dictionaries, or of the text's end. A name that the
  /// value begins with is passed over.
  [[nodiscard]] std::size_t FindValueEnd(std::size_t index) {
    if (index < text_.size() && text_[index] == '/') index = SkipName(text_, index);
    std::size_t depth = 0;
    for (;;) {
      index = kValueMarks.Find(text_, index);
      if (index == text_.size()) return index;
      switch (text_[index]) {
        case '/':
          if (depth == 0) return index;
          ++index;
          break;
        case '(':
          index = SkipLiteralString(text_, index);
          break;
        case '<':
          if (PairAt(index)) {
            ++depth;
            index += 2;
          } else {
            index = SkipHexString(text_, index);
          }
          break;
        case '[':
          ++depth;
          ++index;
          break;
        case '>':
          // A single one ends nothing.
          if (PairAt(index)) {
            Leave(depth);
            ++index;
          }
          ++index;
          break;
        case ']':
          Leave(depth);
          ++index;
          break;
        default:
          index = PassPercent(index);
      }
    }
  }

  static void Leave(std::size_t& depth) {
    if (depth > 0) --depth;
  }

  [[nodiscard]] std::size_t PassPercent(std::size_t index) {
    if (!commentStarts_.Has(index)) return index + 1;
    const std::size_t end = SkipComment(text_, index);
    comments_.push_back({index, end});
    return end;
  }

  std::string_view text_;
  CommentStarts commentStarts_;
  std::string_view key_;
  std::size_t valueStart_ = 0;
  std::size_t index_ = 0;
  std::vector<Comment> comments_;  ///< within the last value
};

}  // namespace

std::int32_t PdfReader::JoinAndParseDictionary(const Table<std::string>& lines, std::int32_t first,
                                               std::int32_t last) {
  return JoinAndParse(lines, first, last);
}

std::int32_t PdfReader::JoinAndParseDictionary(const Table<std::string_view>& lines, std::int32_t first,
                                               std::int32_t last) {
  return JoinAndParse(lines, first, last);
}

template <typename Line>
std::int32_t PdfReader::JoinAndParse(const Table<Line>& lines, std::int32_t first, std::int32_t last) {
  if (first < 0 || last > lines.UpperBound() || first > last) return -1;
  try {
    std::int32_t firstEntry = -1;
    if constexpr (std::is_same_v<Line, std::string_view>) {
      if (first == last) {
        // The usual case: the text is kept already.
        ParseDictionary(TrimBlanks(lines[first]), 1, firstEntry);
        return firstEntry;
      }
    }
    std::string joined;
    for (std::int32_t i = first; i <= last; ++i) joined += lines[i];
    ParseDictionary(state_.Texts.Keep(TrimBlanks(joined)), 1, firstEntry);
    return firstEntry;
  } catch (const RuleBroken&) {
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
  if (start < 1) return -1;
  const std::size_t begin = kWhiteSpaceSet.Skip(text, static_cast<std::size_t>(start) - 1);
  if (begin >= text.size()) return -1;
  std::size_t end = text.size();
  while (end > begin && text[end - 1] == ' ') --end;
  const std::string_view dictionary = text.substr(begin, end - begin);
  if (!IsDictionaryText(dictionary)) return -1;
  const std::string_view inner = dictionary.substr(2, dictionary.size() - 4);
  const std::int32_t position = ParseDictionaryEntries(inner, firstEntry);
  if (firstEntry < 0 && inner.find('/') == std::string_view::npos) return TrimBlanks(inner).empty() ? 0 : -1;
  if (position == 0) return 0;
  // A non-zero value in any case: the inner text begins two characters after the start.
  return position + static_cast<std::int32_t>(begin) + 2;
}

/// Returns the 1-based position in the inner text at which a cancel was seen, 0 when the text was used up.
std::int32_t PdfReader::ParseDictionaryEntries(std::string_view inner, std::int32_t& firstEntry) {
  EntryWalk walk(inner);
  std::int32_t previous = -1;
  std::int32_t countdown = kKeysPerYield;
  while (!walk.AtEnd()) {
    if (--countdown == 0) {
      shell_.Yield();
      if (state_.AbortRequested) return static_cast<std::int32_t>(walk.Index()) + 1;
      countdown = kKeysPerYield;
    }
    if (!walk.Next()) break;
    const std::string_view value = TrimRightBlanks(
        walk.ValueHoldsComments() ? state_.Texts.Keep(walk.ValueWithoutComments()) : walk.Value());
    const std::int32_t entry = AppendEntry(walk.Key(), value);
    if (value.substr(0, 2) == "<<") ParseNested(entry, value);
    if (previous < 0) {
      firstEntry = entry;
    } else {
      state_.NameEntries[previous].NameId = entry;
    }
    previous = entry;
  }
  return 0;
}

/// Both texts are kept ones.
std::int32_t PdfReader::AppendEntry(std::string_view key, std::string_view value) {
  const std::int32_t index = state_.NameEntryCount;
  if (index > state_.NameEntries.UpperBound()) state_.NameEntries.Grow(CheckedAdd(index, 63));
  state_.NameEntryCount = index + 1;
  NameEntry& row = state_.NameEntries[index];
  row.NameText = key;
  row.NameValue = value;
  return index;
}

/// The rows of a value that is a dictionary follow the row of its key.
void PdfReader::ParseNested(std::int32_t entry, std::string_view value) {
  std::int32_t nested = -1;
  ParseDictionary(value, 1, nested);
  if (nested < 0) return;
  NameEntry& row = state_.NameEntries[entry];
  row.NameFlag = 1;
  row.NameRef = nested;
}

}  // namespace folioweld
