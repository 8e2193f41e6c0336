#pragma once

namespace folioweld {

/// Sends WM_DELETE_WINDOW to every managed top-level window on the X display whose _NET_WM_PID is the process
/// on this machine and that understands the request. False when there is no display or no such window.
bool CloseX11Windows(int process);

}  // namespace folioweld
