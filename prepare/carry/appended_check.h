#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "platform/windows_api.h"
#include "prepare/carry/appending.h"
#include "prepare/carry/page_walk.h"
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
  std::vector<ObjectPlace> Places;  ///< by number; those that are free or written anew have no offset
  std::vector<int> Pages;           ///< numbers, in their order

  void Forget(int number);
};

[[nodiscard]] JoinedState StateOf(QPDF& file, const std::vector<FoundPage>& pages);

/// Reads the file with its revision, which is `length` bytes long. Raises `NotCarried` unless it can be
/// joined again and everything is where it was.
void CheckAppended(WindowsAPI& system, WindowsAPI::Handle file, const JoinedState& before,
                   std::int64_t length);

}  // namespace folioweld
