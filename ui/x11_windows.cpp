#include "ui/x11_windows.h"

#include <QString>
#include <QSysInfo>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <string>
#include <xcb/res.h>
#include <xcb/xcb.h>

namespace folioweld {

namespace {

struct FreeDeleter {
  void operator()(void* memory) const { std::free(memory); }
};

template <typename T>
using Reply = std::unique_ptr<T, FreeDeleter>;

/// Longest property read, in units of four bytes.
constexpr std::uint32_t kLongestProperty = 65536;

}  // namespace

class X11Windows::Display {
 public:
  Display() : connection_(xcb_connect(nullptr, &screenNumber_)) {}
  Display(const Display&) = delete;
  Display& operator=(const Display&) = delete;
  ~Display() { xcb_disconnect(connection_); }

  [[nodiscard]] bool Open() const { return xcb_connection_has_error(connection_) == 0; }

  /// The windows that the window manager manages, on every screen.
  [[nodiscard]] std::vector<xcb_window_t> ManagedWindows() const {
    std::vector<xcb_window_t> windows;
    auto screens = xcb_setup_roots_iterator(xcb_get_setup(connection_));
    for (; screens.rem > 0; xcb_screen_next(&screens)) {
      const auto some = Numbers(screens.data->root, Atom("_NET_CLIENT_LIST"), XCB_ATOM_WINDOW);
      windows.insert(windows.end(), some.begin(), some.end());
    }
    return windows;
  }

  [[nodiscard]] bool IsOf(xcb_window_t window, const IsWanted& wanted) const {
    if (const auto told = ProcessOf(window)) return wanted(*told);
    const auto id = Numbers(window, Atom("_NET_WM_PID"), XCB_ATOM_CARDINAL);
    if (id.size() != 1 || !wanted(static_cast<int>(id[0]))) return false;
    // The same number on another machine is another process.
    const std::string machine = Text(window, XCB_ATOM_WM_CLIENT_MACHINE);
    return machine.empty() || machine == QSysInfo::machineHostName().toStdString();
  }

  /// Asks one of the viewer's windows to close. False when it does not understand the request.
  [[nodiscard]] bool CloseWindowCallback(xcb_window_t window) const {
    const xcb_atom_t protocols = Atom("WM_PROTOCOLS");
    const xcb_atom_t request = Atom("WM_DELETE_WINDOW");
    bool understood = false;
    for (const std::uint32_t atom : Numbers(window, protocols, XCB_ATOM_ATOM)) {
      understood = understood || atom == request;
    }
    if (!understood) return false;
    xcb_client_message_event_t event{};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = window;
    event.type = protocols;
    event.data.data32[0] = request;
    event.data.data32[1] = XCB_CURRENT_TIME;
    xcb_send_event(connection_, 0, window, XCB_EVENT_MASK_NO_EVENT, reinterpret_cast<const char*>(&event));
    return true;
  }

  /// Waits until the server has everything that was sent.
  void Finish() const {
    const Reply<xcb_get_input_focus_reply_t> reply(
        xcb_get_input_focus_reply(connection_, xcb_get_input_focus(connection_), nullptr));
  }

 private:
  [[nodiscard]] xcb_atom_t Atom(const char* name) const {
    const auto cookie = xcb_intern_atom(connection_, 0, static_cast<std::uint16_t>(std::strlen(name)), name);
    const Reply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(connection_, cookie, nullptr));
    return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
  }

  /// The process that made the window, where the server knows: it is on this machine then.
  [[nodiscard]] std::optional<int> ProcessOf(xcb_window_t window) const {
    const auto* extension = xcb_get_extension_data(connection_, &xcb_res_id);
    if (extension == nullptr || extension->present == 0) return {};
    const xcb_res_client_id_spec_t wanted{window, XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID};
    const auto cookie = xcb_res_query_client_ids(connection_, 1, &wanted);
    const Reply<xcb_res_query_client_ids_reply_t> reply(
        xcb_res_query_client_ids_reply(connection_, cookie, nullptr));
    if (!reply) return {};
    auto ids = xcb_res_query_client_ids_ids_iterator(reply.get());
    for (; ids.rem > 0; xcb_res_client_id_value_next(&ids)) {
      if ((ids.data->spec.mask & XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID) == 0) continue;
      if (xcb_res_client_id_value_value_length(ids.data) != 1) continue;
      return static_cast<int>(*xcb_res_client_id_value_value(ids.data));
    }
    return {};
  }

  [[nodiscard]] Reply<xcb_get_property_reply_t> Property(xcb_window_t window, xcb_atom_t name,
                                                         xcb_atom_t type) const {
    const auto cookie = xcb_get_property(connection_, 0, window, name, type, 0, kLongestProperty);
    return Reply<xcb_get_property_reply_t>(xcb_get_property_reply(connection_, cookie, nullptr));
  }

  [[nodiscard]] std::vector<std::uint32_t> Numbers(xcb_window_t window, xcb_atom_t name,
                                                   xcb_atom_t type) const {
    const auto reply = Property(window, name, type);
    if (!reply || reply->format != 32) return {};
    const auto* first = static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
    return {first, first + xcb_get_property_value_length(reply.get()) / 4};
  }

  [[nodiscard]] std::string Text(xcb_window_t window, xcb_atom_t name) const {
    const auto reply = Property(window, name, XCB_GET_PROPERTY_TYPE_ANY);
    if (!reply || reply->format != 8) return {};
    return {static_cast<const char*>(xcb_get_property_value(reply.get())),
            static_cast<std::size_t>(xcb_get_property_value_length(reply.get()))};
  }

  int screenNumber_ = 0;
  xcb_connection_t* connection_;
};

X11Windows::X11Windows() : display_(std::make_unique<Display>()) {
  if (!display_->Open()) display_.reset();
}

X11Windows::~X11Windows() = default;

std::vector<X11Windows::Window> X11Windows::Managed() const {
  return display_ ? display_->ManagedWindows() : std::vector<Window>();
}

bool X11Windows::IsOf(Window window, const IsWanted& wanted) const {
  return display_ && display_->IsOf(window, wanted);
}

bool X11Windows::Close(const std::vector<Window>& windows) const {
  if (!display_) return false;
  bool asked = false;
  for (const Window window : windows) {
    if (display_->CloseWindowCallback(window)) asked = true;
  }
  display_->Finish();
  return asked;
}

}  // namespace folioweld
