#pragma once

#include <cstddef>
#include <memory>
#include <string_view>
#include <vector>

namespace folioweld {

/// Keeps texts at fixed addresses until it is reset, so that many short pieces of one dictionary can point
/// into a single copy of it.
class TextPool {
 public:
  /// A view of the pool's own copy of the text, valid until `Reset`.
  [[nodiscard]] std::string_view Keep(std::string_view text);

  void Reset();

 private:
  std::vector<std::unique_ptr<char[]>> blocks_;
  char* next_ = nullptr;
  std::size_t left_ = 0;
};

}  // namespace folioweld
