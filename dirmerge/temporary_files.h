#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "engine/file_module.h"

namespace folioweld {

/// The temporary files of a directory merge, each under the index of the result that it holds. Owns them:
/// they are deleted at the end of its life, whatever way the job went. An index without a file, as that of an
/// input that is carried over, stays empty.
class TemporaryFiles {
 public:
  /// `killed` is told the name of every file just before it is deleted.
  TemporaryFiles(FileModule& files, std::function<void(const std::string&)> killed);
  TemporaryFiles(const TemporaryFiles&) = delete;
  TemporaryFiles& operator=(const TemporaryFiles&) = delete;
  ~TemporaryFiles();

  /// Makes `index` the highest one; false when it no longer fits the 16 bits that the job counts with, or
  /// when there is no memory for it.
  [[nodiscard]] bool Grow(int index);
  /// The highest index, -1 at first.
  [[nodiscard]] int Highest() const { return static_cast<int>(names_.size()) - 1; }

  /// Takes over the file made for the result at the index. Asks for no memory, so that no file is ever left
  /// without an owner.
  void SetCreated(int index, std::string name) {
    names_.at(static_cast<std::size_t>(index)) = std::move(name);
  }
  [[nodiscard]] const std::string& Name(int index) const {
    return names_.at(static_cast<std::size_t>(index));
  }

  /// Deletes the files now.
  void DeleteAll();

 private:
  FileModule& files_;
  std::function<void(const std::string&)> killed_;
  std::vector<std::string> names_;
};

}  // namespace folioweld
