#pragma once

#include <functional>

namespace folioweld::testing {

/// How a child process ended.
struct ChildEnd {
  int Status = 0;  ///< what it returned; -1 when a signal ended it
  int Signal = 0;  ///< the signal; 0 when it returned
};

/// Status of a child that cannot do what the test is about, and of one whose expectations failed.
inline constexpr int kChildSkips = 77;
inline constexpr int kChildFailed = 99;

/// Runs the body in a process of its own, so that limits, mounts and deaths stay there, and waits for it for
/// at most two minutes (a child that hangs is killed and counts as a failure). Expectations that fail in the
/// child are printed there and make it return `kChildFailed`.
[[nodiscard]] ChildEnd InChild(const std::function<int()>& body);

}  // namespace folioweld::testing
