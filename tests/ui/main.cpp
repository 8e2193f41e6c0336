#include <QApplication>
#include <QStandardPaths>
#include <gtest/gtest.h>
#include <string>

#include "tests/ui/second_window.h"

int main(int argc, char** argv) {
  ::testing::InitGoogleTest(&argc, argv);
  qputenv("QT_QPA_PLATFORM", "offscreen");
  // The desktop of whoever runs the tests has no say in them.
  for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_STYLE_OVERRIDE", "QT_SCALE_FACTOR",
                           "QT_QPA_PLATFORMTHEME", "SESSION_MANAGER"}) {
    qunsetenv(name);
  }
  QApplication application(argc, argv);
  QApplication::setQuitOnLastWindowClosed(false);
  if (argc == 4 && std::string(argv[1]) == folioweld::testing::kAsSecondWindow) {
    return folioweld::testing::RunAsSecondWindow(argv[2], argv[3]);
  }
  return RUN_ALL_TESTS();
}
