// Preloaded into the program: every large write takes as long as on a slow disk, so that a merge of large
// documents lasts long enough for a person, and for a test, to do something meanwhile: for some seconds, or
// for minutes where the machine is so busy that they were not enough. The first one makes the file that
// FOLIOWELD_SLOWED names: a test whose writes are not slowed tests something else.

#include <cstdlib>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/types.h>
#include <time.h>
#include <unistd.h>

// The parameters are those of the system's function.
extern "C" ssize_t pwrite(int file, const void* bytes, size_t count, off_t offset) {
  using Function = ssize_t (*)(int, const void*, size_t, off_t);
  static const auto real = reinterpret_cast<Function>(::dlsym(RTLD_NEXT, "pwrite"));
  constexpr size_t kLarge = 64 * 1024;
  constexpr int kQuickWrites = 1000;
  constexpr timespec kPerWrite{0, 5'000'000};
  constexpr timespec kPerLateWrite{0, 100'000'000};
  if (count >= kLarge) {
    static const int mark = ::open(std::getenv("FOLIOWELD_SLOWED"), O_CREAT | O_WRONLY | O_CLOEXEC, 0600);
    if (mark < 0) std::abort();
    static int writes = 0;
    ::nanosleep(++writes <= kQuickWrites ? &kPerWrite : &kPerLateWrite, nullptr);
  }
  return real(file, bytes, count, offset);
}
