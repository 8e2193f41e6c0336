#include "ui/service_request.h"

#include <algorithm>
#include <gio/gio.h>

namespace folioweld {

namespace {

/// The object of the bus by which an application's service answers.
std::string ObjectOf(std::string service) {
  std::replace(service.begin(), service.end(), '.', '/');
  std::replace(service.begin(), service.end(), '-', '_');
  return "/" + service;
}

GVariant* Documents(const std::string& uri) {
  const char* const uris[] = {uri.c_str(), nullptr};
  return g_variant_new("(^as@a{sv})", uris, g_variant_new("a{sv}", nullptr));
}

}  // namespace

/// Each call under way holds a share of it, and gives that back when it calls back.
struct ServiceRequest::Progress {
  using Share = std::shared_ptr<Progress>;

  Progress(std::string service, std::string uri) : Service(std::move(service)), Uri(std::move(uri)) {}
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;
  ~Progress() {
    g_clear_object(&Bus);
    g_object_unref(Stop);
  }

  static gpointer Hand(const Share& progress) { return new Share(progress); }
  static Share Take(gpointer handed) {
    const std::unique_ptr<Share> share(static_cast<Share*>(handed));
    return *share;
  }

  static void Begin(const Share& progress) {
    g_bus_get(G_BUS_TYPE_SESSION, progress->Stop, HasBus, Hand(progress));
  }

  static void HasBus(GObject* /*none*/, GAsyncResult* result, gpointer handed) {
    const Share progress = Take(handed);
    progress->Bus = g_bus_get_finish(result, nullptr);
    if (progress->Bus == nullptr) {
      progress->Now = State::Failed;
      return;
    }
    // The end of the session's bus is no reason to end.
    g_dbus_connection_set_exit_on_close(progress->Bus, FALSE);
    g_dbus_connection_call(progress->Bus, progress->Service.c_str(), ObjectOf(progress->Service).c_str(),
                           "org.freedesktop.Application", "Open", Documents(progress->Uri), nullptr,
                           G_DBUS_CALL_FLAGS_NONE, G_MAXINT, progress->Stop, HasOpened, Hand(progress));
  }

  static void HasOpened(GObject* /*bus*/, GAsyncResult* result, gpointer handed) {
    const Share progress = Take(handed);
    GVariant* nothing = g_dbus_connection_call_finish(progress->Bus, result, nullptr);
    if (nothing == nullptr) {
      progress->Now = State::Failed;
      return;
    }
    g_variant_unref(nothing);
    g_dbus_connection_call(progress->Bus, "org.freedesktop.DBus", "/org/freedesktop/DBus",
                           "org.freedesktop.DBus", "GetConnectionUnixProcessID",
                           g_variant_new("(s)", progress->Service.c_str()), G_VARIANT_TYPE("(u)"),
                           G_DBUS_CALL_FLAGS_NONE, -1, progress->Stop, HasProcess, Hand(progress));
  }

  static void HasProcess(GObject* /*bus*/, GAsyncResult* result, gpointer handed) {
    const Share progress = Take(handed);
    progress->Now = State::Answered;
    GVariant* answer = g_dbus_connection_call_finish(progress->Bus, result, nullptr);
    if (answer == nullptr) return;
    guint32 process = 0;
    g_variant_get(answer, "(u)", &process);
    g_variant_unref(answer);
    progress->Process = static_cast<int>(process);
  }

  const std::string Service;
  const std::string Uri;
  GCancellable* const Stop = g_cancellable_new();
  GDBusConnection* Bus = nullptr;
  State Now = State::Asked;
  int Process = 0;
};

ServiceRequest::ServiceRequest(const std::string& service, const std::string& uri)
    : progress_(std::make_shared<Progress>(service, uri)) {
  Progress::Begin(progress_);
}

ServiceRequest::~ServiceRequest() {
  g_cancellable_cancel(progress_->Stop);
}

ServiceRequest::State ServiceRequest::Now() const {
  // For an event loop that is not GLib's.
  if (progress_->Now == State::Asked) g_main_context_iteration(nullptr, FALSE);
  return progress_->Now;
}

int ServiceRequest::Process() const {
  return progress_->Process;
}

}  // namespace folioweld
