// Preloaded into the program: every large write takes as long as on a slow disk, so that a merge of large
// documents lasts long enough for a person, and for a test, to do something meanwhile.

#include <dlfcn.h>
#include <sys/types.h>
#include <time.h>

// The parameters are those of the system's function.
extern "C" ssize_t pwrite(int file, const void* bytes, size_t count, off_t offset) {
  using Function = ssize_t (*)(int, const void*, size_t, off_t);
  static const auto real = reinterpret_cast<Function>(::dlsym(RTLD_NEXT, "pwrite"));
  constexpr size_t kLarge = 64 * 1024;
  constexpr timespec kPerWrite{0, 5'000'000};
  if (count >= kLarge) ::nanosleep(&kPerWrite, nullptr);
  return real(file, bytes, count, offset);
}
