#include "ui/x11_windows.h"

#include <QString>
#include <QSysInfo>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <vector>
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

class Display {
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

  [[nodiscard]] bool BelongsTo(xcb_window_t window, int process) const {
    const auto id = Numbers(window, Atom("_NET_WM_PID"), XCB_ATOM_CARDINAL);
    if (id.size() != 1 || id[0] != static_cast<std::uint32_t>(process)) return false;
    // The same number on another machine is another process.
    const std::string machine = Text(window, XCB_ATOM_WM_CLIENT_MACHINE);
    return machine.empty() || machine == QSysInfo::machineHostName().toStdString();
  }

  /// False when the window does not understand the request.
  [[nodiscard]] bool RequestClose(xcb_window_t window) const {
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

/// Asks one window of those looked through to close. False when it is not the process's, or cannot be asked.
bool CloseWindowCallback(const Display& display, xcb_window_t window, int process) {
  return display.BelongsTo(window, process) && display.RequestClose(window);
}

}  // namespace

bool CloseX11Windows(int process) {
  const Display display;
  if (!display.Open()) return false;
  bool asked = false;
  for (const xcb_window_t window : display.ManagedWindows()) {
    if (CloseWindowCallback(display, window, process)) asked = true;
  }
  display.Finish();
  return asked;
}

}  // namespace folioweld
