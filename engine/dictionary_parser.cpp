// The dictionary parser of PdfReader: texts to rows of NameEntries.

#include <algorithm>
#include <string>
#include <type_traits>

#include "engine/entry_walk.h"
#include "engine/lexer.h"
#include "engine/pdf_reader.h"

namespace folioweld {

namespace {

constexpr std::int16_t kDeepestNesting = 100;
/// Keys of one dictionary between two looks at the user's wishes.
constexpr std::int32_t kKeysPerYield = 1000;

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
  return ParseDictionary(text, {}, start, firstEntry);
}

std::int32_t PdfReader::ParseDictionary(std::string_view text, std::span<char> own, std::int32_t start,
                                        std::int32_t& firstEntry) {
  firstEntry = -1;
  shell_.Yield();
  const DepthCount depth(state_);
  if (state_.AbortRequested || state_.DictDepth > kDeepestNesting) return -1;
  if (start < 1 || static_cast<std::size_t>(start) > text.size()) return -1;
  const auto inner = InnerText(text.substr(static_cast<std::size_t>(start) - 1));
  if (!inner) return -1;
  const std::int32_t position = ParseDictionaryEntries(*inner, own, firstEntry);
  if (firstEntry < 0 && inner->find('/') == std::string_view::npos) {
    return TrimBlanks(*inner).empty() ? 0 : -1;
  }
  // A non-zero value in any case: the inner text begins two characters after the start.
  return position == 0 ? 0 : position + static_cast<std::int32_t>(inner->data() - text.data());
}

/// Returns the 1-based position in the inner text at which a cancel was seen, 0 when the text was used up.
std::int32_t PdfReader::ParseDictionaryEntries(std::string_view inner, std::span<char> own,
                                               std::int32_t& firstEntry) {
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
    const std::string_view value =
        TrimRightBlanks(walk.ValueHoldsComments() ? KeepWithoutComments(walk, own) : walk.WrittenValue());
    const std::int32_t entry = AppendEntry(walk.Key(), value);
    if (value.substr(0, 2) == "<<") ParseNested(entry, value, own);
    if (previous < 0) {
      firstEntry = entry;
    } else {
      state_.NameEntries[previous].NameId = entry;
    }
    previous = entry;
  }
  return 0;
}

/// The value without comments. It takes new memory in the outermost dictionary only: in the text of the
/// parser's own that the deeper ones lie in, it takes the place of the value as it was written.
std::string_view PdfReader::KeepWithoutComments(const EntryWalk& walk, std::span<char> own) {
  const std::string_view written = walk.WrittenValue();
  const std::string value = walk.ValueWithoutComments();
  if (own.empty()) return state_.Texts.Keep(value);
  const auto place = own.subspan(static_cast<std::size_t>(written.data() - own.data()), written.size());
  const auto end = place.last(value.size());
  std::fill(place.begin(), place.end(), ' ');
  std::copy(value.begin(), value.end(), end.begin());
  return {end.data(), end.size()};
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

/// The rows of a value that is a dictionary follow the row of its key. Comments that only deeper dictionaries
/// see are taken out of a copy, since the value of the key stays what it is.
void PdfReader::ParseNested(std::int32_t entry, std::string_view value, std::span<char> own) {
  if (own.empty() && value.find('%') != std::string_view::npos) {
    own = state_.Texts.KeepCopy(value);
    value = {own.data(), own.size()};
  }
  std::int32_t nested = -1;
  ParseDictionary(value, own, 1, nested);
  if (nested < 0) return;
  NameEntry& row = state_.NameEntries[entry];
  row.NameFlag = 1;
  row.NameRef = nested;
}

}  // namespace folioweld
