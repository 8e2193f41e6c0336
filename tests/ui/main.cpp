#include <QApplication>
#include <QStandardPaths>
#include <gtest/gtest.h>

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
  return RUN_ALL_TESTS();
}
