#pragma once

#include <optional>
#include <string>
#include <utility>

#include "tests/support/faulting_system.h"

namespace folioweld::testing {

/// A system whose every folder holds as many names as wanted, all of which lead to one document.
class CrowdedSystem : public FaultingSystem {
 public:
  CrowdedSystem(std::string document, int count) : document_(std::move(document)), count_(count) {}

  SystemResult<Search> FindFirstFile(const std::string& /*folder*/) override {
    return static_cast<Search>(&next_);
  }
  SystemResult<std::optional<std::string>> FindNextFile(Search /*search*/) override {
    if (next_ == count_) return std::optional<std::string>();
    return std::optional<std::string>(std::to_string(next_++));
  }
  void FindClose(Search /*search*/) override { Closed = true; }
  SystemResult<FileInformation> GetFileAttributes(const std::string& /*path*/) override {
    // NOLINTNEXTLINE(bugprone-parent-virtual-call): too many to be recorded
    return PosixApi::GetFileAttributes(document_);
  }
  SystemResult<Handle> CreateFile(const std::string& path, OpenMode mode) override {
    if (mode != OpenMode::ReadExisting) return FaultingSystem::CreateFile(path, mode);
    // NOLINTNEXTLINE(bugprone-parent-virtual-call): too many to be recorded
    return PosixApi::CreateFile(document_, mode);
  }

  bool Closed = false;

 private:
  std::string document_;
  int count_;
  int next_ = 0;
};

}  // namespace folioweld::testing
