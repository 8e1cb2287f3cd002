#pragma once
// The desktop's session bus at start: whether it answers at all, and whether the desktop asks
// applications for less motion: GNOME's "enable-animations" switched off, read through the XDG desktop
// portal's Settings interface. No bus, no portal, an odd answer or no answer in time all mean no
// request, and start-up never waits longer than the budget for it, whatever the bus does.
namespace zb {

inline constexpr int kDesktopQueryTimeoutMs = 250;

struct DesktopBusAnswer {
  enum class Bus { none, answered, silent } bus = Bus::none;  // none: no session bus is named
  bool reducedMotion = false;
};

// Connects to the session bus and, when `askMotion`, asks its portal; both within `timeoutMs`.
DesktopBusAnswer askDesktopBus(bool askMotion, int timeoutMs = kDesktopQueryTimeoutMs);

inline bool desktopRequestsReducedMotion(int timeoutMs = kDesktopQueryTimeoutMs) {
  return askDesktopBus(true, timeoutMs).reducedMotion;
}

// Points the bus libraries of this process (SDL's among them) at an address that fails at once, so
// that none of them waits on a session bus that did not answer.
void hideSilentDesktopBus();

}  // namespace zb
