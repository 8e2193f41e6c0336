#pragma once

namespace folioweld {

/// Notices during its life that memory runs out: libqpdf takes an object that it has no room for for null.
class MemoryWatch {
 public:
  MemoryWatch();
  MemoryWatch(const MemoryWatch&) = delete;
  MemoryWatch& operator=(const MemoryWatch&) = delete;
  ~MemoryWatch();

  /// Raises `NotPrepared` when it ran out.
  static void Check();
};

}  // namespace folioweld
