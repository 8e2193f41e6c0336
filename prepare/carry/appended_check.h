#pragma once

#include <cstdint>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "platform/windows_api.h"
#include "prepare/carry/appending.h"
#include "prepare/libqpdf.h"
#include "prepare/system_input.h"

namespace folioweld {

/// An open file as libqpdf reads it, without repairing anything. Raises `NotPrepared` and what libqpdf
/// raises.
class JoinedFile {
 public:
  JoinedFile(WindowsAPI& system, WindowsAPI::Handle file, std::int64_t length);

  [[nodiscard]] QPDF& File() const { return *file_; }
  void CheckReads() const { input_->CheckReads(); }

 private:
  std::shared_ptr<SystemInput> input_;
  std::unique_ptr<QPDF> file_;
};

/// What appending may not change.
struct JoinedState {
  std::int64_t Length = 0;
  std::vector<ObjectPlace> Places;
  std::string Pages;  ///< of the catalog, as it is written
};

/// Of the joined file, which is `length` bytes long and was not changed in memory.
[[nodiscard]] JoinedState StateOf(QPDF& file, std::int64_t length);

/// Reads the file with its revision, which ends at `length`. Raises `NotCarried` unless it can be joined
/// again and everything is where it was: objects that are not `written` anew keep their places in the table,
/// those that are keep their /Kids, and the catalog keeps its /Pages; so the pages are the same.
void CheckAppended(WindowsAPI& system, WindowsAPI::Handle file, const JoinedState& before,
                   std::int64_t length, const std::set<int>& written);

}  // namespace folioweld
