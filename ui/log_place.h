#pragma once

#include <QRect>

namespace folioweld {

/// Where the log window goes, both with their frames: below the main window, as wide as that, or beside it
/// where there is little room below. Where there is none for both, at the bottom of the screen, behind the
/// main window. Always within `desk`, the part of the screen that windows may use.
[[nodiscard]] QRect LogPlace(const QRect& desk, const QRect& mainWindow);

}  // namespace folioweld
