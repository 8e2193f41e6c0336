#pragma once

#include <cerrno>
#include <cstddef>

#include "platform/system_result.h"

namespace folioweld {

/// How often a call that a signal interrupts is made again before the interruption counts as its error. A
/// signal now and then is nothing; a call that never gets through would otherwise never end.
inline constexpr int kMostInterruptions = 100;

[[nodiscard]] inline int ErrorCodeOf(const SystemError& error) {
  return error.Code;
}

template <typename T>
[[nodiscard]] int ErrorCodeOf(const SystemResult<T>& result) {
  return result.Error().Code;
}

/// Makes the call, again while a signal interrupts it.
template <typename Call>
[[nodiscard]] auto RetryInterrupted(Call call) {
  auto result = call();
  for (int i = 0; i < kMostInterruptions && ErrorCodeOf(result) == EINTR; ++i) result = call();
  return result;
}

/// Moves `count` bytes with a call that may move fewer: `transfer` is told how many are done and returns how
/// many more it moved. None at all is EIO.
template <typename Transfer>
[[nodiscard]] SystemError TransferAll(std::size_t count, Transfer transfer) {
  for (std::size_t done = 0; done < count;) {
    const auto part = RetryInterrupted([&] { return transfer(done); });
    if (!part.Ok()) return part.Error();
    if (part.Value() == 0) return SystemError{EIO};
    done += part.Value();
  }
  return {};
}

}  // namespace folioweld
