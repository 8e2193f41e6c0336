#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

namespace folioweld {

/// The managed top-level windows of the X display, on every screen. Where there is no such display, there are
/// none.
class X11Windows {
 public:
  using Window = std::uint32_t;
  using IsWanted = std::function<bool(int process)>;

  X11Windows();
  X11Windows(const X11Windows&) = delete;
  X11Windows& operator=(const X11Windows&) = delete;
  ~X11Windows();

  [[nodiscard]] std::vector<Window> Managed() const;

  /// Whether the window is of a process that is wanted, a process of this machine. What the X server says of
  /// that counts; where it says nothing, what the window itself says does (_NET_WM_PID).
  [[nodiscard]] bool IsOf(Window window, const IsWanted& wanted) const;

  /// Sends WM_DELETE_WINDOW to those of the windows that understand it. False when there was none.
  bool Close(const std::vector<Window>& windows) const;

 private:
  class Display;

  std::unique_ptr<Display> display_;
};

}  // namespace folioweld
