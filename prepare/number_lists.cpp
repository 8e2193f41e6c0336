#include "prepare/number_lists.h"

#include <charconv>

namespace folioweld {

namespace {

template <typename Number>
std::vector<Number> NumbersOf(std::string_view text) {
  std::vector<Number> numbers;
  const char* const end = text.data() + text.size();
  for (const char* next = text.data();;) {
    Number number = -1;
    const auto [after, error] = std::from_chars(next, end, number);
    if (error != std::errc() || number < 0) return {};
    numbers.push_back(number);
    if (after == end) return numbers;
    if (*after != ',') return {};
    next = after + 1;
  }
}

}  // namespace

std::vector<WindowsAPI::Handle> HandlesOf(std::string_view text) {
  return NumbersOf<WindowsAPI::Handle>(text);
}

std::optional<ProcessLimits> LimitsOf(std::string_view text) {
  const std::vector<std::int64_t> numbers = NumbersOf<std::int64_t>(text);
  if (numbers.size() != 3) return std::nullopt;
  return ProcessLimits{numbers[0], numbers[1], numbers[2]};
}

}  // namespace folioweld
