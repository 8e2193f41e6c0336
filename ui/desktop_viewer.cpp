#include "ui/desktop_viewer.h"

#include <cstring>
#include <gio/gdesktopappinfo.h>
#include <gio/gio.h>
#include <string_view>

#include "ui/x11_windows.h"

namespace folioweld {

namespace {

template <typename T>
struct GlibDeleter {
  void operator()(T* memory) const { g_free(memory); }
};

using GlibText = std::unique_ptr<char, GlibDeleter<char>>;

std::string Taken(char* text) {
  const GlibText owner(text);
  return text == nullptr ? std::string() : std::string(text);
}

/// The content type of a file with the extension.
std::string ContentTypeOf(const std::string& extension) {
  return Taken(g_content_type_guess(("document." + extension).c_str(), nullptr, 0, nullptr));
}

/// The word of a command line that names the program: not "env" with the variables that it sets.
const char* ProgramWord(char** words) {
  char** word = words;
  const std::string_view first(words[0]);
  if (first.substr(first.rfind('/') + 1) == "env") ++word;
  while (word != words && *word != nullptr && std::strchr(*word, '=') != nullptr) ++word;
  return *word == nullptr || **word == '-' ? words[0] : *word;
}

std::string FullProgramPath(GAppInfo* program) {
  // Not g_app_info_get_executable, which ends at the first blank, also within quotes.
  const char* commandLine = g_app_info_get_commandline(program);
  char** words = nullptr;
  if (commandLine == nullptr || !g_shell_parse_argv(commandLine, nullptr, &words, nullptr)) return {};
  std::string path = Taken(g_find_program_in_path(ProgramWord(words)));
  g_strfreev(words);
  return path;
}

extern "C" void RememberProcess(GDesktopAppInfo* /*program*/, GPid process, gpointer place) {
  *static_cast<ViewerProcess*>(place) = process;
}

}  // namespace

struct DesktopViewer::Association {
  explicit Association(GDesktopAppInfo* program) : Program(program) {}
  Association(const Association&) = delete;
  Association& operator=(const Association&) = delete;
  ~Association() { g_object_unref(Program); }

  GDesktopAppInfo* const Program;
};

DesktopViewer::DesktopViewer() = default;
DesktopViewer::~DesktopViewer() = default;

std::string DesktopViewer::FindPdfReader(const std::string& extension) {
  association_.reset();
  const std::string type = ContentTypeOf(extension);
  GAppInfo* program = g_app_info_get_default_for_type(type.c_str(), FALSE);
  if (program == nullptr) return {};
  std::string path = FullProgramPath(program);
  if (path.empty() || !G_IS_DESKTOP_APP_INFO(program)) {
    g_object_unref(program);
    return {};
  }
  association_ = std::make_unique<Association>(G_DESKTOP_APP_INFO(program));
  return path;
}

bool DesktopViewer::LaunchProcess(const std::string& document, ViewerProcess& process) {
  process = 0;
  if (!association_) return false;
  const std::string uri = Taken(g_filename_to_uri(document.c_str(), nullptr, nullptr));
  if (uri.empty()) return false;
  GList* uris = g_list_append(nullptr, const_cast<char*>(uri.c_str()));
  // Not reaped by GLib, so that the process can be watched.
  constexpr auto kFlags = static_cast<GSpawnFlags>(G_SPAWN_SEARCH_PATH | G_SPAWN_DO_NOT_REAP_CHILD);
  const gboolean started = g_desktop_app_info_launch_uris_as_manager(
      association_->Program, uris, nullptr, kFlags, nullptr, nullptr, RememberProcess, &process, nullptr);
  g_list_free(uris);
  return started && process > 0;
}

bool DesktopViewer::CloseThreadWindows(ViewerProcess process) {
  return CloseX11Windows(process);
}

}  // namespace folioweld
