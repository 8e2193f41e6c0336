#include "ui/desktop_viewer.h"

#include <algorithm>
#include <cstring>
#include <gio/gdesktopappinfo.h>
#include <gio/gio.h>
#include <string_view>
#include <utility>

namespace folioweld {

namespace {

template <typename T>
struct GlibDeleter {
  void operator()(T* memory) const { g_free(memory); }
};

constexpr char kServiceKey[] = "DBusActivatable";

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

/// The entry without what makes the desktop's library start it as a service, so that its command is used.
GDesktopAppInfo* WithoutService(GDesktopAppInfo* program) {
  GKeyFile* entry = g_key_file_new();
  GDesktopAppInfo* without = nullptr;
  if (g_key_file_load_from_file(entry, g_desktop_app_info_get_filename(program), G_KEY_FILE_NONE, nullptr)) {
    g_key_file_remove_key(entry, G_KEY_FILE_DESKTOP_GROUP, kServiceKey, nullptr);
    without = g_desktop_app_info_new_from_keyfile(entry);
  }
  g_key_file_free(entry);
  return without;
}

/// The name of the service that the entry speaks of; empty when it is none.
std::string ServiceOf(GDesktopAppInfo* program) {
  if (!g_desktop_app_info_get_boolean(program, kServiceKey)) return {};
  constexpr std::string_view kSuffix = ".desktop";
  std::string name = g_app_info_get_id(G_APP_INFO(program));
  if (!name.ends_with(kSuffix)) return {};
  name.resize(name.size() - kSuffix.size());
  return g_dbus_is_name(name.c_str()) && g_dbus_is_interface_name(name.c_str()) ? name : std::string();
}

std::string UriOf(const std::string& document) {
  return Taken(g_filename_to_uri(document.c_str(), nullptr, nullptr));
}

}  // namespace

struct DesktopViewer::Association {
  explicit Association(GDesktopAppInfo* program) : Program(program) {}
  Association(const Association&) = delete;
  Association& operator=(const Association&) = delete;
  ~Association() { g_object_unref(Program); }

  GDesktopAppInfo* Program;
  std::string Service;  ///< empty = none
};

struct DesktopViewer::Asked {
  Asked(const std::string& service, const std::string& uri)
      : Before(Windows.Managed()), Request(service, uri) {}

  X11Windows Windows;
  std::vector<X11Windows::Window> Before;
  ServiceRequest Request;
};

DesktopViewer::DesktopViewer(WindowsAPI& system) : system_(system) {}
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
  association_->Service = ServiceOf(association_->Program);
  GDesktopAppInfo* const command =
      association_->Service.empty() ? nullptr : WithoutService(association_->Program);
  if (command != nullptr) g_object_unref(std::exchange(association_->Program, command));
  return path;
}

bool DesktopViewer::LaunchProcess(const std::string& document, ViewerProcess& process) {
  process = 0;
  asked_.reset();
  if (!association_) return false;
  const std::string uri = UriOf(document);
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
  const X11Windows windows;
  return windows.Close(WindowsOf(windows, process));
}

bool DesktopViewer::AskService(const std::string& document) {
  asked_.reset();
  if (!association_ || association_->Service.empty()) return false;
  const std::string uri = UriOf(document);
  if (uri.empty()) return false;
  asked_ = std::make_unique<Asked>(association_->Service, uri);
  return true;
}

ViewerDesktop::Answer DesktopViewer::ServiceAnswer() {
  switch (asked_ ? asked_->Request.Now() : ServiceRequest::State::Failed) {
    case ServiceRequest::State::Asked:
      return Answer::None;
    case ServiceRequest::State::Answered:
      return Answer::Given;
    case ServiceRequest::State::Failed:
      return Answer::Refused;
  }
  return Answer::Refused;
}

bool DesktopViewer::ServiceHasWindow() {
  return !ServiceWindows().empty();
}

void DesktopViewer::CloseServiceWindows() {
  if (asked_) asked_->Windows.Close(ServiceWindows());
}

std::vector<X11Windows::Window> DesktopViewer::ServiceWindows() {
  if (!asked_ || asked_->Request.Process() <= 0) return {};
  auto windows = WindowsOf(asked_->Windows, asked_->Request.Process());
  // Those that were there before show other documents.
  const auto& before = asked_->Before;
  std::erase_if(windows, [&](X11Windows::Window window) {
    return std::find(before.begin(), before.end(), window) != before.end();
  });
  return windows;
}

std::vector<X11Windows::Window> DesktopViewer::WindowsOf(const X11Windows& windows, ViewerProcess process) {
  std::vector<X11Windows::Window> found;
  for (const X11Windows::Window window : windows.Managed()) {
    if (windows.IsOf(window, [&](int owner) { return IsOrDescendsFrom(owner, process); }))
      found.push_back(window);
  }
  return found;
}

bool DesktopViewer::IsOrDescendsFrom(ViewerProcess process, ViewerProcess ancestor) {
  while (process > 1 && process != ancestor) {
    const auto parent = system_.ParentOfProcess(process);
    if (!parent.Ok()) return false;
    process = parent.Value();
  }
  return process == ancestor;
}

}  // namespace folioweld
