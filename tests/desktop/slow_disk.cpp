// Preloaded into the program: every copy inside the system takes as long as on a slow disk, so that a merge
// of large documents lasts long enough for a person, and for a test, to do something meanwhile.

#include <dlfcn.h>
#include <sys/types.h>
#include <time.h>

// The parameters are those of the system's function.
extern "C" ssize_t copy_file_range(int from, off_t* fromOffset, int to, off_t* toOffset, size_t count,
                                   unsigned flags) {
  using Function = ssize_t (*)(int, off_t*, int, off_t*, size_t, unsigned);
  static const auto real = reinterpret_cast<Function>(::dlsym(RTLD_NEXT, "copy_file_range"));
  constexpr timespec kPerCopy{0, 10'000'000};
  ::nanosleep(&kPerCopy, nullptr);
  return real(from, fromOffset, to, toOffset, count, flags);
}
