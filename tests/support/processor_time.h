#pragma once

#include <ctime>

namespace folioweld::testing {

/// Seconds for which a processor has worked for this process. Unlike the time of a clock they do not grow
/// while the machine is busy with something else.
inline double ProcessorSeconds() {
  struct timespec now {};
  ::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) / 1e9;
}

}  // namespace folioweld::testing
