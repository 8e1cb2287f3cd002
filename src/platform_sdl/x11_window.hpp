#pragma once
// What the game does with its X11 window through Xlib itself, where SDL would make the event loop wait
// or end the program: full-screen requests that return at once, and a window destroyed by another
// program (xdotool windowclose, xkill -id) that ends the game the way closing it does.
#include <SDL.h>

#include <memory>

namespace zb {

// Puts the game's X error handler in place. Called before SDL starts, so that the handler SDL keeps
// and hands errors on to, even after it has shut down, is this one rather than Xlib's fatal default.
void guardX11Errors();

class X11Window {
 public:
  // Nothing when the window is not on X11. From then on, an X error about this window no longer stops
  // the program; the window counts as lost instead.
  static std::unique_ptr<X11Window> attach(SDL_Window* window);
  ~X11Window();
  // Around SDL's destruction of the window, so that a window already gone neither hangs it nor, through
  // an error SDL no longer guards, ends the program.
  void beforeDestroy();
  void afterDestroy();
  X11Window(const X11Window&) = delete;
  X11Window& operator=(const X11Window&) = delete;

  // Asks for full screen, or to leave it, without waiting for the answer: through the window manager
  // when one runs, else by laying the window over `display` and back. The outcome arrives as window
  // events like any other change of size.
  void requestFullScreen(bool fullScreen, const SDL_Rect& display);

  // Whether the window was destroyed from outside: the event says so, or an earlier X error did.
  bool lostBy(const SDL_Event& event) const;
  bool lost() const;

 private:
  X11Window(SDL_Window* window, void* display, unsigned long id) : window_(window), display_(display), id_(id) {}
  bool windowManagerRuns() const;

  SDL_Window* window_;
  void* display_;
  unsigned long id_;
  // Where the window stood before it was laid over its display without a window manager.
  SDL_Rect restored_{};
  bool laidOver_ = false;
};

}  // namespace zb
