#pragma once

#include <string_view>

namespace folioweld {

/// Where the bytes of a file go, one after the other.
class ByteSink {
 public:
  ByteSink() = default;
  ByteSink(const ByteSink&) = delete;
  ByteSink& operator=(const ByteSink&) = delete;
  virtual ~ByteSink() = default;

  /// Takes the bytes that follow those before. Raises `NotPrepared` when they cannot be written.
  virtual void Write(std::string_view bytes) = 0;
};

}  // namespace folioweld
