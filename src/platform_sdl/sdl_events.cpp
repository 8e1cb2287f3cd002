#include "platform_sdl/sdl_events.hpp"

#include "platform_sdl/gamepads.hpp"
#include "platform_sdl/key_mapping.hpp"

namespace zb {

namespace {

EventOutcome dispatchWindowEvent(const SDL_WindowEvent& event, View& view) {
  switch (event.event) {
    case SDL_WINDOWEVENT_SIZE_CHANGED:
      // SDL reports the size in window coordinates, which are the scene's points.
      view.setSize({static_cast<double>(event.data1), static_cast<double>(event.data2)});
      break;
    case SDL_WINDOWEVENT_CLOSE:
      return EventOutcome::quit;
    // Switching to another window or minimising: the player has looked away.
    case SDL_WINDOWEVENT_FOCUS_LOST:
    case SDL_WINDOWEVENT_MINIMIZED:
      view.windowLostFocus();
      break;
    default:
      break;
  }
  return EventOutcome::handled;
}

}  // namespace

KeyEvent keyEventFor(const SDL_KeyboardEvent& key) {
  return {keyCodeForScancode(key.keysym.scancode), modifierFlagsFor(key.keysym.mod), key.repeat != 0};
}

EventOutcome dispatchEvent(const SDL_Event& event, View& view) {
  switch (event.type) {
    case SDL_QUIT:
      return EventOutcome::quit;
    case SDL_WINDOWEVENT:
      return dispatchWindowEvent(event.window, view);
    case SDL_KEYDOWN: {
      const KeyEvent key = keyEventFor(event.key);
      // Quitting by key leaves exactly as a window close does, the store written the same way.
      if (isQuitShortcut(key)) return EventOutcome::quit;
      view.keyDown(key);
      break;
    }
    case SDL_KEYUP:
      view.keyUp(keyEventFor(event.key));
      break;
    case SDL_MOUSEBUTTONDOWN:
      if (event.button.button == SDL_BUTTON_LEFT) {
        const double x = event.button.x;
        const double y = view.size().height - event.button.y;  // window y runs down, the view's up
        view.mouseDown({x, y});
      }
      break;
    case SDL_MOUSEMOTION:
      view.mouseMoved();
      break;
    default:
      break;
  }
  return EventOutcome::handled;
}

EventOutcome dispatchEvent(const SDL_Event& event, View& view, SdlGamepads& gamepads) {
  if (gamepads.handle(event, view)) return EventOutcome::handled;
  return dispatchEvent(event, view);
}

}  // namespace zb
