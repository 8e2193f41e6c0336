#pragma once

#include <string>
#include <vector>

#include "engine/file_module.h"

namespace folioweld {

/// Finds out whether an output can be created, without touching what is there. A file that the probe itself
/// made and that is still empty at the end of its life is removed again, as by `RemoveEmpty`.
class OutputProbe {
 public:
  OutputProbe(FileModule& files, std::string path);
  OutputProbe(const OutputProbe&) = delete;
  OutputProbe& operator=(const OutputProbe&) = delete;
  ~OutputProbe();

  /// False when the path cannot be opened for writing, is no ordinary file or is one of the inputs under
  /// whatever name.
  [[nodiscard]] bool Open(const std::vector<FileIdentity>& inputs);

  /// Removes the file that the probe made, if there is still nothing in it.
  void RemoveEmpty();

  /// The system's error of an `Open` that failed; none where it broke a rule.
  [[nodiscard]] SystemError Error() const { return error_; }

 private:
  FileModule& files_;
  std::string path_;
  bool created_ = false;
  FileIdentity identity_;
  SystemError error_;
};

}  // namespace folioweld
