#pragma once

#include <string>
#include <vector>

#include "dirmerge/logging.h"
#include "engine/file_module.h"

namespace folioweld {

/// The temporary files of a directory merge, each under the index of the result that it holds. Owns them:
/// they are deleted at the end of its life, whatever way the job went. An index without a file, as that of an
/// input that is carried over, stays empty.
class TemporaryFiles {
 public:
  /// Each deletion is logged before it happens, and it is noticed when another file has taken the place of
  /// one of these, which is then left alone.
  TemporaryFiles(FileModule& files, const Logging& logging);
  TemporaryFiles(const TemporaryFiles&) = delete;
  TemporaryFiles& operator=(const TemporaryFiles&) = delete;
  ~TemporaryFiles();

  /// Makes `index` the highest one; false when it no longer fits the 16 bits that the job counts with, or
  /// when there is no memory for it.
  [[nodiscard]] bool Grow(int index);
  /// The highest index, -1 at first.
  [[nodiscard]] int Highest() const { return static_cast<int>(files_.size()) - 1; }

  /// Takes over the file made for the result at the index, and from here on no other file passes for it. It
  /// is deleted at the end also when the memory for that runs out here.
  void SetCreated(int index, std::string name, const FileInformation& made);
  [[nodiscard]] const std::string& Name(int index) const {
    return files_.at(static_cast<std::size_t>(index)).Name;
  }

  /// Deletes the files now.
  void DeleteAll();

 private:
  struct Temporary {
    std::string Name;
    FileInformation Made;
  };

  FileModule& module_;
  const Logging& logging_;
  std::vector<Temporary> files_;
};

}  // namespace folioweld
