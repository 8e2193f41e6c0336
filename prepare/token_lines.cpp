#include "prepare/token_lines.h"

#include "prepare/not_prepared.h"

namespace folioweld {

namespace {

constexpr std::size_t kUsualLine = 120;
/// Readers of lines give up on longer ones.
constexpr std::size_t kLongestTokenLine = 100'000;

}  // namespace

void TokenLines::Put(std::string_view token) {
  const std::size_t length = text_.size() - lineStart_;
  if (length > 0) {
    if (length + 1 + token.size() > kUsualLine && MayEndLine()) {
      EndLine();
    } else {
      text_ += ' ';
    }
  }
  text_ += token;
  const std::size_t lastLineEnd = token.rfind('\n');
  if (lastLineEnd != std::string_view::npos) lineStart_ = text_.size() - (token.size() - lastLineEnd - 1);
  if (text_.size() - lineStart_ > kLongestTokenLine) {
    throw NotPrepared("a name or a row of names is longer than a line of 100,000 bytes");
  }
}

/// A name at the end of a line that ends like a keyword would end the object there.
bool TokenLines::MayEndLine() const {
  return !text_.ends_with("stream") && !text_.ends_with("endobj");
}

void TokenLines::EndLine() {
  if (text_.size() == lineStart_) return;
  text_ += '\n';
  lineStart_ = text_.size();
}

void TokenLines::Clear() {
  text_.clear();
  lineStart_ = 0;
}

}  // namespace folioweld
