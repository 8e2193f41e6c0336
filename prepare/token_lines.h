#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace folioweld {

/// Text that is put together of tokens. A blank parts two of them, or a line end where a line would get
/// long; none is broken.
class TokenLines {
 public:
  void Put(std::string_view token);
  /// Ends the line, if one was begun.
  void EndLine();
  void Clear();

  [[nodiscard]] std::string_view Text() const { return text_; }

 private:
  [[nodiscard]] bool MayEndLine() const;

  std::string text_;
  std::size_t lineStart_ = 0;  ///< index in the text
};

}  // namespace folioweld
