#include "platform_sdl/sdl_view.hpp"

#include <SDL.h>

namespace zb {

SdlView::SdlView(Size size, Window* window, SoundOutput* sound) : View(size), window_(window), sound_(sound) {}

void SdlView::hideCursorUntilMouseMoves() {
  SDL_ShowCursor(SDL_DISABLE);
  cursorHidden_ = true;
}

void SdlView::unhideCursor() {
  SDL_ShowCursor(SDL_ENABLE);
  cursorHidden_ = false;
}

void SdlView::cursorMoved() {
  if (cursorHidden_) unhideCursor();
}

SoundOutput& SdlView::soundOutput() { return sound_ != nullptr ? *sound_ : silence_; }

}  // namespace zb
