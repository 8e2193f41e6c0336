#pragma once

#include <algorithm>
#include <gtest/gtest.h>
#include <string>

#include "engine/file_module.h"
#include "tests/support/faulting_system.h"
#include "tests/support/temp_folder.h"

namespace folioweld::testing {

/// A folder, the real system with its counters, and a file module over it.
class FileFixture : public ::testing::Test {
 protected:
  /// Writes a file and opens it for reading.
  std::int16_t OpenWith(const std::string& bytes) {
    const std::int16_t number = Files.OpenForBinaryRead(Folder.Write("in", bytes));
    EXPECT_GE(number, 1);
    return number;
  }

  [[nodiscard]] long CountOf(const std::string& call) const {
    return std::count_if(System.Calls.begin(), System.Calls.end(),
                         [&](const FaultingSystem::Call& made) { return made.Name == call; });
  }

  TempFolder Folder;
  FaultingSystem System;
  FileModule Files{System};
};

}  // namespace folioweld::testing
