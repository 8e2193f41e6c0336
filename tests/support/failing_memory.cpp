#include "tests/support/failing_memory.h"

#include <cstdlib>
#include <new>

namespace {
std::size_t g_least = 1;
std::size_t g_most = 0;
long g_requestsLeft = 0;

bool IsRequestToFail() {
  return g_requestsLeft > 0 && --g_requestsLeft == 0;
}
}  // namespace

// The program's own, so that a test can make them fail.
void* operator new(std::size_t size) {
  if ((size >= g_least && size <= g_most) || IsRequestToFail()) throw std::bad_alloc();
  void* const memory = std::malloc(size == 0 ? 1 : size);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}

// What the arena takes.
void* operator new(std::size_t size, std::align_val_t alignment) {
  void* const memory =
      IsRequestToFail() ? nullptr : std::aligned_alloc(static_cast<std::size_t>(alignment), size);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}

void operator delete(void* memory, std::align_val_t /*alignment*/) noexcept {
  std::free(memory);
}

void operator delete(void* memory, std::size_t /*size*/, std::align_val_t /*alignment*/) noexcept {
  std::free(memory);
}

void operator delete(void* memory) noexcept {
  std::free(memory);
}

void operator delete(void* memory, std::size_t /*size*/) noexcept {
  std::free(memory);
}

namespace folioweld::testing {

FailingMemory::FailingMemory(std::size_t least, std::size_t most) {
  g_least = least;
  g_most = most;
}

FailingMemory::~FailingMemory() {
  g_least = 1;
  g_most = 0;
}

FailingRequest::FailingRequest(long n) {
  g_requestsLeft = n;
}

FailingRequest::~FailingRequest() {
  g_requestsLeft = 0;
}

bool FailingRequest::Reached() {
  return g_requestsLeft == 0;
}

}  // namespace folioweld::testing
