#include "platform_sdl/sdl_window.hpp"
#include "platform_sdl/foreign_allocations.hpp"
#include "platform_sdl/window_identity.hpp"
#include "platform_sdl/x11_window.hpp"

#include <SDL.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>

namespace zb {

namespace {

int windowExtent(double points, double minimum) {
  if (!std::isfinite(points)) return static_cast<int>(minimum);
  return static_cast<int>(std::lround(std::clamp(points, minimum, 16384.0)));
}

bool isSet(const char* variable) {
  const char* value = std::getenv(variable);
  return value != nullptr && *value != '\0';
}

// The drivers worth trying when the user named none. Wayland is left out when its library could only
// complain about a missing runtime folder; X11 and KMSDRM fail quietly.
std::string visibleDrivers() {
  const bool wayland = isSet("WAYLAND_DISPLAY") || isSet("XDG_RUNTIME_DIR");
  return wayland ? "x11,wayland,KMSDRM" : "x11,KMSDRM";
}

}  // namespace

bool initSdlVideo(std::string& error) {
  ForeignAllocations drivers;
  const bool chosenByUser = isSet("SDL_VIDEODRIVER");
  if (!chosenByUser) SDL_SetHint(SDL_HINT_VIDEODRIVER, visibleDrivers().c_str());
  announceWindowClass();
  guardX11Errors();
  if (SDL_Init(SDL_INIT_VIDEO) != 0) {
    error = SDL_GetError();
    return false;
  }
  const char* driver = SDL_GetCurrentVideoDriver();
  const bool invisible = driver != nullptr && (std::strcmp(driver, "offscreen") == 0 || std::strcmp(driver, "dummy") == 0);
  if (invisible && !chosenByUser) {
    SDL_Quit();
    error = "only the invisible video driver '" + std::string(driver) + "' is available";
    return false;
  }
  return true;
}

static bool isX11() {
  const char* driver = SDL_GetCurrentVideoDriver();
  return driver != nullptr && std::strcmp(driver, "x11") == 0;
}

std::unique_ptr<SdlWindow> SdlWindow::open(Size size, bool fullScreen, std::string& error) {
  ForeignAllocations drivers;
  Uint32 flags = SDL_WINDOW_RESIZABLE | SDL_WINDOW_ALLOW_HIGHDPI;
  // On X11 full screen is asked for once the window stands, the same way as every later request, so
  // that leaving it never goes through SDL's waiting path.
  const bool requestLater = fullScreen && isX11();
  if (fullScreen && !requestLater) flags |= SDL_WINDOW_FULLSCREEN_DESKTOP;
  SDL_Window* window = SDL_CreateWindow(kTitle, SDL_WINDOWPOS_CENTERED, SDL_WINDOWPOS_CENTERED,
                                        windowExtent(size.width, kMinimumSize.width),
                                        windowExtent(size.height, kMinimumSize.height), flags);
  if (window == nullptr) {
    error = SDL_GetError();
    return nullptr;
  }
  SDL_SetWindowMinimumSize(window, static_cast<int>(kMinimumSize.width), static_cast<int>(kMinimumSize.height));
  setWindowIcon(window);
  std::unique_ptr<SdlWindow> opened(new SdlWindow(window));
  if (requestLater) opened->toggleFullScreen();
  return opened;
}

SdlWindow::SdlWindow(SDL_Window* window) : window_(window), x11_(X11Window::attach(window)) {}

SdlWindow::~SdlWindow() {
  if (x11_) x11_->beforeDestroy();
  SDL_DestroyWindow(window_);
  if (x11_) x11_->afterDestroy();
}

bool SdlWindow::isFullScreen() const {
  return (SDL_GetWindowFlags(window_) & SDL_WINDOW_FULLSCREEN) != 0 || coversItsDisplay();
}

bool SdlWindow::coversItsDisplay() const {
  // SDL does not notice a full screen the window manager made on its own (a title-bar button, a
  // shortcut); such a window shows up as one whose content is exactly its display. A maximised window
  // that happens to fill an undecorated display does not count.
  if ((SDL_GetWindowFlags(window_) & SDL_WINDOW_MAXIMIZED) != 0) return false;
  const int display = SDL_GetWindowDisplayIndex(window_);
  SDL_Rect bounds;
  if (display < 0 || SDL_GetDisplayBounds(display, &bounds) != 0) return false;
  int x = 0, y = 0, w = 0, h = 0;
  SDL_GetWindowPosition(window_, &x, &y);
  SDL_GetWindowSize(window_, &w, &h);
  return x == bounds.x && y == bounds.y && w == bounds.w && h == bounds.h;
}

void SdlWindow::toggleFullScreen() { toggleWanted_ = !toggleWanted_; }

// Once a pass at most, so that a burst of presses costs one request, not one each. On X11 the request
// returns at once; SDL's own call there waits up to a tenth of a second for an answer, and without a
// window manager it records a size the window never takes.
void SdlWindow::makeFullScreenRequest() {
  if (!toggleWanted_) return;
  toggleWanted_ = false;
  if (x11_) {
    const bool wanted = !requestedFullScreen_.value_or(isFullScreen());
    requestedFullScreen_ = wanted;
    SDL_Rect bounds{0, 0, 0, 0};
    const int display = SDL_GetWindowDisplayIndex(window_);
    if (display < 0 || SDL_GetDisplayBounds(display, &bounds) != 0) bounds = {};
    x11_->requestFullScreen(wanted, bounds);
    return;
  }
  if ((SDL_GetWindowFlags(window_) & SDL_WINDOW_FULLSCREEN) != 0) {
    SDL_SetWindowFullscreen(window_, 0);
  } else if (coversItsDisplay()) {
    // SDL ignores leaving a full screen it did not enter: claim it first, then leave it.
    SDL_SetWindowFullscreen(window_, SDL_WINDOW_FULLSCREEN_DESKTOP);
    SDL_SetWindowFullscreen(window_, 0);
  } else {
    SDL_SetWindowFullscreen(window_, SDL_WINDOW_FULLSCREEN_DESKTOP);
  }
}

void SdlWindow::postFullScreenChanges(NotificationCenter& center) {
  makeFullScreenRequest();
  const bool fullScreen = isFullScreen();
  // Only a change seen to arrive at the state asked for answers the request; a state that merely
  // matches may be an earlier request still on its way back.
  if (fullScreen != postedFullScreen_ && requestedFullScreen_ == fullScreen) requestedFullScreen_.reset();
  if (fullScreen == postedFullScreen_) return;
  postedFullScreen_ = fullScreen;
  center.post(fullScreen ? kWindowDidEnterFullScreenNotification : kWindowDidExitFullScreenNotification,
              static_cast<const Window*>(this));
}

bool SdlWindow::destroyedFromOutside(const SDL_Event& event) const { return x11_ && x11_->lostBy(event); }

void SdlWindow::watchNativeWindow() {
  x11_.reset();
  x11_ = X11Window::attach(window_);
}

Size SdlWindow::sizeInPoints() const {
  int w = 0, h = 0;
  SDL_GetWindowSize(window_, &w, &h);
  return {static_cast<double>(w), static_cast<double>(h)};
}

bool SdlWindow::isMinimized() const {
  return (SDL_GetWindowFlags(window_) & (SDL_WINDOW_MINIMIZED | SDL_WINDOW_HIDDEN)) != 0;
}

}  // namespace zb
