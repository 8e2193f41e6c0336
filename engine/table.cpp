#include "engine/table.h"

#include <limits>
#include <string>

namespace folioweld {

IndexError::IndexError(std::int32_t index)
    : std::out_of_range("index " + std::to_string(index) + " lies outside its table"), index_(index) {}

OverflowError::OverflowError() : std::overflow_error("a count or position is too large") {}

std::int32_t CheckedAdd(std::int32_t first, std::int32_t second) {
  std::int32_t sum = 0;
  if (__builtin_add_overflow(first, second, &sum)) throw OverflowError();
  return sum;
}

std::int16_t CheckedInt16(std::int32_t value) {
  if (value < std::numeric_limits<std::int16_t>::min() || value > std::numeric_limits<std::int16_t>::max()) {
    throw OverflowError();
  }
  return static_cast<std::int16_t>(value);
}

}  // namespace folioweld
