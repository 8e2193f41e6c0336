// What a process that reads the documents of others may use.

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <sys/prctl.h>
#include <sys/resource.h>

#include "platform/posix_api.h"

namespace folioweld {

namespace {

#if defined(__SANITIZE_ADDRESS__)
constexpr bool kMemoryIsWatched = true;
#elif defined(__has_feature)
constexpr bool kMemoryIsWatched = __has_feature(address_sanitizer);
#else
constexpr bool kMemoryIsWatched = false;
#endif

/// Nobody may raise a limit that the process was started with.
bool Limit(int resource, std::int64_t most) {
  struct rlimit limit {};
  if (::getrlimit(resource, &limit) < 0) return false;
  limit.rlim_max = std::min(limit.rlim_max, static_cast<rlim_t>(most));
  limit.rlim_cur = limit.rlim_max;
  return ::setrlimit(resource, &limit) == 0;
}

}  // namespace

SystemError PosixApi::LimitProcess(const ProcessLimits& limits) {
  const bool limited = Limit(RLIMIT_CORE, 0) && Limit(RLIMIT_CPU, limits.ProcessorSeconds) &&
                       Limit(RLIMIT_FSIZE, limits.FileSize) &&
                       // A sanitizer reserves the greater part of the address space.
                       (kMemoryIsWatched || Limit(RLIMIT_AS, limits.Memory)) &&
                       ::prctl(PR_SET_PDEATHSIG, SIGKILL) == 0;
  return limited ? SystemError{} : SystemError{errno == 0 ? EIO : errno};
}

}  // namespace folioweld
