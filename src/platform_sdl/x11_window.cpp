#include "platform_sdl/x11_window.hpp"

#include <SDL_syswm.h>
#include <X11/Xatom.h>
#include <X11/Xlib.h>

#include <atomic>

namespace zb {
namespace {

// The _NET_WM_STATE client message's actions, from the window manager standard.
constexpr long kNetWmStateRemove = 0;
constexpr long kNetWmStateAdd = 1;
constexpr long kSourceIsApplication = 1;

// Xlib keeps one error handler for the whole process, so the window it guards is process-wide too.
std::atomic<Window> guardedWindow{0};
std::atomic<bool> windowLost{false};
XErrorHandler previousHandler = nullptr;

// Xlib's own handler prints the error and exits with status 1. An error naming our window means another
// program destroyed it: the game then ends at the next pass, as after a close.
int tolerateLostWindow(Display* display, XErrorEvent* error) {
  if (windowLost || (guardedWindow != 0 && error->resourceid == guardedWindow)) {
    windowLost = true;
    return 0;
  }
  return previousHandler != nullptr ? previousHandler(display, error) : 0;
}

// SDL sets handlers of its own around some calls and does not always put ours back, so it is put back
// before every place a lost window could raise an error.
void guardErrors() {
  XErrorHandler previous = XSetErrorHandler(tolerateLostWindow);
  if (previous != tolerateLostWindow) previousHandler = previous;
}

Display* asDisplay(void* display) { return static_cast<Display*>(display); }

}  // namespace

void guardX11Errors() { guardErrors(); }

std::unique_ptr<X11Window> X11Window::attach(SDL_Window* window) {
  SDL_SysWMinfo info;
  SDL_VERSION(&info.version);
  if (!SDL_GetWindowWMInfo(window, &info) || info.subsystem != SDL_SYSWM_X11) return nullptr;
  guardedWindow = info.info.x11.window;
  windowLost = false;
  guardErrors();
  // X events reach the loop too, so that a DestroyNotify for the window is seen.
  SDL_EventState(SDL_SYSWMEVENT, SDL_ENABLE);
  return std::unique_ptr<X11Window>(new X11Window(window, info.info.x11.display, info.info.x11.window));
}

// The handler stays: SDL still closes the display after this, and a lost window makes it complain.
X11Window::~X11Window() { guardErrors(); }

// SDL hides the window before destroying it and waits for the server to confirm, which for a window
// that no longer exists never happens; the confirmation is supplied here.
void X11Window::beforeDestroy() {
  guardErrors();
  if (!windowLost) return;
  XEvent unmapped{};
  unmapped.xunmap.type = UnmapNotify;
  unmapped.xunmap.display = asDisplay(display_);
  unmapped.xunmap.event = id_;
  unmapped.xunmap.window = id_;
  XPutBackEvent(asDisplay(display_), &unmapped);
}

// The errors of destroying a lost window arrive later; they are collected while our handler is in
// place rather than when SDL has put back Xlib's fatal one.
void X11Window::afterDestroy() {
  guardErrors();
  if (windowLost) XSync(asDisplay(display_), False);
}

bool X11Window::windowManagerRuns() const {
  Display* display = asDisplay(display_);
  const Atom check = XInternAtom(display, "_NET_SUPPORTING_WM_CHECK", True);
  if (check == None) return false;
  Atom type = None;
  int format = 0;
  unsigned long count = 0, after = 0;
  unsigned char* data = nullptr;
  const int status = XGetWindowProperty(display, DefaultRootWindow(display), check, 0, 1, False, XA_WINDOW, &type,
                                        &format, &count, &after, &data);
  const bool runs = status == Success && type == XA_WINDOW && count == 1;
  if (data != nullptr) XFree(data);
  return runs;
}

void X11Window::requestFullScreen(bool fullScreen, const SDL_Rect& bounds) {
  guardErrors();
  Display* display = asDisplay(display_);
  if (windowManagerRuns() && !laidOver_) {
    XEvent message{};
    message.xclient.type = ClientMessage;
    message.xclient.window = id_;
    message.xclient.message_type = XInternAtom(display, "_NET_WM_STATE", False);
    message.xclient.format = 32;
    message.xclient.data.l[0] = fullScreen ? kNetWmStateAdd : kNetWmStateRemove;
    message.xclient.data.l[1] = static_cast<long>(XInternAtom(display, "_NET_WM_STATE_FULLSCREEN", False));
    message.xclient.data.l[3] = kSourceIsApplication;
    XSendEvent(display, DefaultRootWindow(display), False, SubstructureRedirectMask | SubstructureNotifyMask,
               &message);
  } else if (fullScreen && !laidOver_ && bounds.w > 0 && bounds.h > 0) {
    // Nobody else arranges windows, so the window itself may simply cover its display.
    // SDL learns of a move only when the server's answer arrives, so right after a quick restore it
    // still reports the display-sized geometry; the place from before is kept then.
    SDL_Rect now{};
    SDL_GetWindowPosition(window_, &now.x, &now.y);
    SDL_GetWindowSize(window_, &now.w, &now.h);
    if (!SDL_RectEquals(&now, &bounds) || restored_.w == 0) restored_ = now;
    XMoveResizeWindow(display, id_, bounds.x, bounds.y, static_cast<unsigned>(bounds.w),
                      static_cast<unsigned>(bounds.h));
    laidOver_ = true;
  } else if (!fullScreen && laidOver_) {
    XMoveResizeWindow(display, id_, restored_.x, restored_.y, static_cast<unsigned>(restored_.w),
                      static_cast<unsigned>(restored_.h));
    laidOver_ = false;
  }
  XFlush(display);
}

bool X11Window::lostBy(const SDL_Event& event) const {
  guardErrors();
  if (event.type == SDL_SYSWMEVENT && event.syswm.msg != nullptr && event.syswm.msg->subsystem == SDL_SYSWM_X11) {
    const XEvent& x = event.syswm.msg->msg.x11.event;
    if (x.type == DestroyNotify && x.xdestroywindow.window == id_) windowLost = true;
  }
  return lost();
}

bool X11Window::lost() const { return windowLost; }

}  // namespace zb
