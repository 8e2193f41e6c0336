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
    created_.resize(static_cast<std::size_t>(index) + 1);
    names_.resize(created_.size());
  } catch (const std::bad_alloc&) {
    return false;
  }
  return true;
}

void TemporaryFiles::SetCreated(int index, std::string name) {
  std::string& created = created_.at(static_cast<std::size_t>(index));
  // First of all, and without asking for memory: from here on the file is sure to be deleted.
  created = std::move(name);
  names_.at(static_cast<std::size_t>(index)) = created;
}

void TemporaryFiles::SetCarried(int index, const std::string& name) {
  names_.at(static_cast<std::size_t>(index)) = name;
  created_.at(static_cast<std::size_t>(index)).clear();
}

void TemporaryFiles::ResetToCreated(int index) {
  names_.at(static_cast<std::size_t>(index)) = created_.at(static_cast<std::size_t>(index));
}

void TemporaryFiles::DeleteAll() {
  for (std::string& name : created_) {
    if (name.empty()) continue;
    try {
      killed_(name);
    } catch (const std::exception&) {
      // Whoever cannot take the news does not keep the file alive.
    }
    files_.DeleteFile(name);
    name.clear();
  }
}

}  // namespace folioweld
