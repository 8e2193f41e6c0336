#include "ui/window_program.h"

#include <QApplication>

#include "dirmerge/command_line.h"
#include "ui/desktop_viewer.h"
#include "ui/main_window.h"
#include "ui/qt_dialogs.h"

namespace folioweld {

int RunWindowProgram(int argc, char** argv, const std::vector<std::string>& arguments) {
  QApplication application(argc, argv);
  QApplication::setApplicationName(QStringLiteral("Folioweld"));
  QApplication::setApplicationVersion(QStringLiteral(FOLIOWELD_VERSION));
  QGuiApplication::setDesktopFileName(QStringLiteral("folioweld"));
  // The main window decides when the program ends, and with which status.
  QApplication::setQuitOnLastWindowClosed(false);
  QtDialogs dialogs;
  DesktopViewer desktop;
  Folioweld window(RealSystem(), dialogs, desktop, CommandLineText(arguments));
  dialogs.SetOwner(&window);
  window.Start();
  return QApplication::exec();
}

}  // namespace folioweld
