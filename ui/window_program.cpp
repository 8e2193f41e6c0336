#include "ui/window_program.h"

#include <QApplication>
#include <QIcon>
#include <utility>

#include "ui/desktop_viewer.h"
#include "ui/main_window.h"
#include "ui/qt_dialogs.h"

// The resources of a static library are there once somebody asks for them, outside of every namespace.
static void LoadResources() {
  Q_INIT_RESOURCE(icons);
}

namespace folioweld {

namespace {

QIcon ApplicationIcon() {
  LoadResources();
  QIcon icon;
  for (const char* size : {"16", "24", "32", "48", "64", "128"}) {
    icon.addFile(QStringLiteral(":/icons/%1.png").arg(QLatin1StringView(size)));
  }
  return icon;
}

}  // namespace

int RunWindowProgram(int argc, char** argv, const Arguments& arguments, LogReader reader) {
  QApplication application(argc, argv);
  QApplication::setApplicationName(QStringLiteral("Folioweld"));
  QApplication::setApplicationVersion(QStringLiteral(FOLIOWELD_VERSION));
  // The name of the desktop entry: by it the desktop knows whose window this is.
  QGuiApplication::setDesktopFileName(QStringLiteral("org.folioweld.Folioweld"));
  QGuiApplication::setWindowIcon(ApplicationIcon());
  // The main window decides when the program ends, and with which status.
  QApplication::setQuitOnLastWindowClosed(false);
  QtDialogs dialogs;
  DesktopViewer desktop(RealSystem());
  Folioweld window(RealSystem(), dialogs, desktop, arguments);
  dialogs.SetOwner(&window);
  window.ShowLogTo(std::move(reader));
  window.Start();
  return QApplication::exec();
}

}  // namespace folioweld
