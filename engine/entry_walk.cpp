#include "engine/entry_walk.h"

#include "engine/lexer.h"

namespace folioweld {

std::optional<std::string_view> InnerText(std::string_view text) {
  const std::size_t begin = kWhiteSpaceSet.Skip(text, 0);
  const std::string_view dictionary = kSpaceSet.TrimRight(text.substr(begin));
  const bool isDictionary =
      dictionary.size() >= 4 && dictionary.starts_with("<<") && dictionary.ends_with(">>");
  if (!isDictionary) return {};
  return dictionary.substr(2, dictionary.size() - 4);
}

std::string EntryWalk::ValueWithoutComments() const {
  std::string value;
  std::size_t start = valueStart_;
  for (const Comment& comment : comments_) {
    value += Between(start, comment.Start);
    start = comment.End;
  }
  return value += Between(start, index_);
}

std::string_view EntryWalk::Value(std::string& room) const {
  if (!ValueHoldsComments()) return TrimRightBlanks(WrittenValue());
  room = ValueWithoutComments();
  return TrimRightBlanks(room);
}

/// Whether the "%" at `index` opens a comment. One after the last line end of the text opens none, because
/// trailer lines are joined without line ends. The last line end is looked up once for a dictionary: a search
/// from every "%" would take the square of the text's length.
bool EntryWalk::IsComment(std::size_t index) {
  if (lastLineEnd_ == kNotLookedUp) {
    const std::size_t last = text_.find_last_of(kLineEnd);
    lastLineEnd_ = last == std::string_view::npos ? 0 : last;
  }
  return index < lastLineEnd_;
}

std::size_t EntryWalk::PassPercent(std::size_t index) {
  if (!IsComment(index)) return index + 1;
  const std::size_t end = SkipComment(text_, index);
  comments_.push_back({index, end});
  return end;
}

std::optional<std::string> FindValue(std::string_view dictionary, std::string_view key) {
  const auto inner = InnerText(dictionary);
  if (!inner) return {};
  EntryWalk walk(*inner);
  while (walk.Next()) {
    if (walk.Key() != key) continue;
    std::string room;
    return std::string(walk.Value(room));
  }
  return {};
}

}  // namespace folioweld
