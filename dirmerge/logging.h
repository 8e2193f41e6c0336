#pragma once

#include <functional>
#include <string>

namespace folioweld {

/// Where the parts of a directory merge tell what happens, a line without a prefix at a time.
struct Logging {
  std::function<void(const std::string&)> Log;     ///< to the log
  std::function<void(const std::string&)> Notice;  ///< to the log and to whoever watches
};

}  // namespace folioweld
