#pragma once
// The game's one SDL window: resizable, able to go full screen over the desktop, drawn at the display's
// pixel density. It is the Window the scene sees, and it tells the scene when full screen changes.
#include <memory>
#include <optional>
#include <string>

#include "engine/geometry.hpp"
#include "engine/notification_center.hpp"
#include "engine/view.hpp"

struct SDL_Window;
union SDL_Event;

namespace zb {

class X11Window;

// Starts SDL's video on a display a player can see: without SDL_VIDEODRIVER set, SDL's invisible
// offscreen and dummy drivers do not count as a display. False, with SDL's reason in `error`, when
// there is none.
bool initSdlVideo(std::string& error);

class SdlWindow final : public Window {
 public:
  static constexpr Size kDefaultSize{960, 540};
  static constexpr Size kMinimumSize{320, 200};
  static constexpr const char* kTitle = "Zindlebop";

  // Needs SDL's video subsystem. Nothing when the window cannot be made; `error` then says why.
  static std::unique_ptr<SdlWindow> open(Size size, bool fullScreen, std::string& error);
  ~SdlWindow() override;
  SdlWindow(const SdlWindow&) = delete;
  SdlWindow& operator=(const SdlWindow&) = delete;

  // Full screen whether we asked for it or the window manager did.
  bool isFullScreen() const override;
  // Notes a request to flip full screen; the loop's next call to postFullScreenChanges makes it.
  void toggleFullScreen() override;

  // Makes the full-screen request noted since the last pass, if any (an even number of presses cancel
  // out), then posts the enter or exit notification, with this window as the object, when the
  // full-screen state differs from the one last posted. The loop calls it once a pass; the first call
  // after opening in full screen posts the enter notification.
  void postFullScreenChanges(NotificationCenter& center);

  // Whether another program destroyed the window (seen in this event or earlier).
  bool destroyedFromOutside(const SDL_Event& event) const;
  // Watches the window's native window anew. SDL makes a new X window when a GL renderer is put on a
  // window opened without GL, and the old one's destruction must not count as the player's.
  void watchNativeWindow();

  SDL_Window* handle() const { return window_; }
  // The content size in points (not pixels).
  Size sizeInPoints() const;
  bool isMinimized() const;

 private:
  explicit SdlWindow(SDL_Window* window);
  bool coversItsDisplay() const;
  void makeFullScreenRequest();

  SDL_Window* window_;
  std::unique_ptr<X11Window> x11_;
  bool postedFullScreen_ = false;
  bool toggleWanted_ = false;
  // The state asked for and not yet seen; a request takes its turn from it rather than from a state
  // the window manager has not reached yet.
  std::optional<bool> requestedFullScreen_;
};

}  // namespace zb
