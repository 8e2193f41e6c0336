#include "prepare/memory_watch.h"

#include <new>

#include "prepare/not_prepared.h"

namespace folioweld {

namespace {

bool memoryRanOut = false;

}  // namespace

MemoryWatch::MemoryWatch() {
  memoryRanOut = false;
  std::set_new_handler([] {
    memoryRanOut = true;
    throw std::bad_alloc();
  });
}

MemoryWatch::~MemoryWatch() {
  std::set_new_handler(nullptr);
}

void MemoryWatch::Check() {
  if (memoryRanOut) throw NotPrepared("there is not enough memory for it");
}

}  // namespace folioweld
