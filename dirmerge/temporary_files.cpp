#include "dirmerge/temporary_files.h"

#include <exception>
#include <limits>
#include <new>
#include <utility>

namespace folioweld {

TemporaryFiles::TemporaryFiles(FileModule& files, std::function<void(const std::string&)> killed)
    : files_(files), killed_(std::move(killed)) {}

TemporaryFiles::~TemporaryFiles() {
  DeleteAll();
}

bool TemporaryFiles::Grow(int index) {
  if (index > std::numeric_limits<std::int16_t>::max()) return false;
  try {
    names_.resize(static_cast<std::size_t>(index) + 1);
  } catch (const std::bad_alloc&) {
    return false;
  }
  return true;
}

void TemporaryFiles::DeleteAll() {
  for (std::string& name : names_) {
    if (name.empty()) continue;
    try {
      killed_(name);
    } catch (const std::exception&) {
      // The file goes even when there is no memory left to tell so.
    }
    files_.DeleteFile(name);
    name.clear();
  }
}

}  // namespace folioweld
