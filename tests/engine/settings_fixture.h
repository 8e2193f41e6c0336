#pragma once

#include <gtest/gtest.h>
#include <string>

#include "engine/settings_store.h"
#include "tests/support/faulting_system.h"
#include "tests/support/temp_folder.h"

namespace folioweld::testing {

/// A settings store in a folder of the test's own.
class SettingsFixture : public ::testing::Test {
 protected:
  SettingsFixture() { PointTo(System); }

  /// Lets a system see this test's folder as the place of the settings.
  void PointTo(FaultingSystem& system) const { system.Environment = {{"XDG_CONFIG_HOME", Folder.Path()}}; }

  [[nodiscard]] std::string SettingsFile() const { return Folder.File("folioweld/settings.ini"); }

  void WriteSettingsFile(const std::string& text) const {
    Folder.MakeFolder("folioweld");
    Folder.Write("folioweld/settings.ini", text);
  }

  TempFolder Folder;
  FaultingSystem System;
  SettingsStore Store{System};
};

}  // namespace folioweld::testing
