#pragma once

#include <functional>
#include <string>
#include <vector>

#include "engine/file_module.h"

namespace folioweld {

/// The results of a directory merge's rounds, by index, and the temporary files among them. Owns those files:
/// they are deleted at the end of its life, whatever way the job went.
class TemporaryFiles {
 public:
  /// `killed` is told the name of every file just before it is deleted.
  TemporaryFiles(FileModule& files, std::function<void(const std::string&)> killed);
  TemporaryFiles(const TemporaryFiles&) = delete;
  TemporaryFiles& operator=(const TemporaryFiles&) = delete;
  ~TemporaryFiles();

  /// Makes `index` the highest one; false when it no longer fits the 16 bits that the job counts with.
  [[nodiscard]] bool Grow(int index);
  /// The highest index, -1 at first.
  [[nodiscard]] int Highest() const { return static_cast<int>(names_.size()) - 1; }

  /// A file made for the result at the index; it is deleted at the end.
  void SetCreated(int index, std::string name);
  /// An input carried over as the result at the index; it is never deleted.
  void SetCarried(int index, const std::string& name);

  [[nodiscard]] const std::string& Name(int index) const {
    return names_.at(static_cast<std::size_t>(index));
  }
  /// Forgets a carried input again.
  void ResetToCreated(int index);

  /// Deletes the files now.
  void DeleteAll();

 private:
  FileModule& files_;
  std::function<void(const std::string&)> killed_;
  std::vector<std::string> names_;
  std::vector<std::string> created_;
};

}  // namespace folioweld
