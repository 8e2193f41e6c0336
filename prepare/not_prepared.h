#pragma once

#include <stdexcept>

namespace folioweld {

/// Why no copy can be made, in words that follow the document's name.
class NotPrepared : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace folioweld
