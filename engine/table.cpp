#include "engine/table.h"

#include <limits>
#include <string>

namespace folioweld {

IndexError::IndexError(std::int32_t index)
    : RuleBroken({0, -1, -1, "index " + std::to_string(index) + " lies outside its table"}) {}

OverflowError::OverflowError() : RuleBroken({0, -1, -1, "a count or position is too large"}) {}

std::int16_t CheckedInt16(std::int32_t value) {
  if (value < std::numeric_limits<std::int16_t>::min() || value > std::numeric_limits<std::int16_t>::max()) {
    throw OverflowError();
  }
  return static_cast<std::int16_t>(value);
}

}  // namespace folioweld
