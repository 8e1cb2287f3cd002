#pragma once
// Whether the desktop asks applications for less motion: GNOME's "enable-animations" switched off,
// read through the XDG desktop portal's Settings interface on the session bus. Asked once at start;
// no bus, no portal, an odd answer or no answer in time all mean no request, and start-up never
// waits long for it.
namespace zb {

inline constexpr int kDesktopQueryTimeoutMs = 250;

bool desktopRequestsReducedMotion(int timeoutMs = kDesktopQueryTimeoutMs);

}  // namespace zb
