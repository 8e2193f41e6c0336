#pragma once

#include <string>

namespace folioweld::testing {

/// The argument that makes the test program a window of its own beside the one of a test. After it: what it
/// is to change ("sort" or "display"), and the folder of the settings.
inline constexpr char kAsSecondWindow[] = "--as-second-window";

/// Opens a window and changes its settings over and over. 0: every change was there right after it was made.
[[nodiscard]] int RunAsSecondWindow(const std::string& part, const std::string& config);

}  // namespace folioweld::testing
