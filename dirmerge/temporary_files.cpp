#include "dirmerge/temporary_files.h"

#include <limits>
#include <new>
#include <utility>

namespace folioweld {

namespace {

/// The files go even when there is no memory left to tell so.
void Tell(const std::function<void(const std::string&)>& tell, const char* before, const std::string& name,
          const char* after) {
  try {
    tell(before + name + after);
  } catch (const std::bad_alloc&) {
  }
}

}  // namespace

TemporaryFiles::TemporaryFiles(FileModule& files, const Logging& logging)
    : module_(files), logging_(logging) {}

TemporaryFiles::~TemporaryFiles() {
  DeleteAll();
}

bool TemporaryFiles::Grow(int index) {
  if (index > std::numeric_limits<std::int16_t>::max()) return false;
  try {
    files_.resize(static_cast<std::size_t>(index) + 1);
  } catch (const std::bad_alloc&) {
    return false;
  }
  return true;
}

void TemporaryFiles::SetCreated(int index, std::string name, const FileInformation& made) {
  Temporary& file = files_.at(static_cast<std::size_t>(index));
  file = {std::move(name), made};
  module_.Own().Add(file.Name, made);
}

void TemporaryFiles::DeleteAll() {
  for (Temporary& file : files_) {
    if (file.Name.empty()) continue;
    Tell(logging_.Log, " Kill \"", file.Name, "\"");
    if (module_.DeleteOwn(file.Name, file.Made) == OwnDeletion::Another) {
      Tell(logging_.Notice, " Another file has taken the place of \"", file.Name, "\" and is left alone");
    }
    module_.Own().Remove(file.Name);
    file.Name.clear();
  }
}

}  // namespace folioweld
