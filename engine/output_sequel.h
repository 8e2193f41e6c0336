#pragma once

#include <string>

#include "platform/windows_api.h"

namespace folioweld {

/// What a `MergeJob` does with its finished output before it says that it has one.
class OutputSequel {
 public:
  OutputSequel() = default;
  OutputSequel(const OutputSequel&) = delete;
  OutputSequel& operator=(const OutputSequel&) = delete;
  virtual ~OutputSequel() = default;

  enum class Outcome {
    Kept,      ///< the output is as good as it was, or better
    Unusable,  ///< the job removes it and fails
    NotThere   ///< its name leads to another file or to none: the job fails
  };

  /// `output` is the file at `DocFileName`(3), its documents are `DocSources`(3). What is left or put among
  /// their alterations is told afterwards. `words` becomes one more warning or, unless the output is kept,
  /// why the job fails; empty = none. A cancel that is seen here counts as one of the job.
  [[nodiscard]] virtual Outcome Run(const FileInformation& output, std::string& words) = 0;
};

}  // namespace folioweld
