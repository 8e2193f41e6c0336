#include "engine/array_walk.h"

#include "engine/lexer.h"

namespace folioweld {

bool ArrayWalk::Next() {
  NumberPair reference;
  const bool isReference = FindReference(text_, index_, kReferenceKeyword, reference);
  if (dictionary_ < (isReference ? reference.Start : text_.size())) {
    number_ = -1;
    index_ = DictionaryEnd();
    element_ = text_.substr(dictionary_, index_ - dictionary_);
    dictionary_ = text_.find("<<", index_);
    return true;
  }
  number_ = reference.Number;
  index_ = reference.End;
  element_ = isReference ? text_.substr(reference.Start) : std::string_view();
  return isReference;
}

/// Index after the dictionary that is the next one.
std::size_t ArrayWalk::DictionaryEnd() const {
  std::size_t index = dictionary_;
  std::size_t depth = 0;
  do {
    index = text_.find_first_of("<>", index);
    if (index == std::string_view::npos) return text_.size();
    const bool isPair = index + 1 < text_.size() && text_[index + 1] == text_[index];
    if (isPair && text_[index] == '<') ++depth;
    if (isPair && text_[index] == '>') --depth;
    index += isPair ? 2 : 1;
  } while (depth > 0);
  return index;
}

}  // namespace folioweld
