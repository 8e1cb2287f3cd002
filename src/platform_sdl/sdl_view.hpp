#pragma once
// The view that presents the scene in the SDL window: it lends the scene the window, the mouse
// cursor and the sound output.
#include "engine/view.hpp"

namespace zb {

class SdlView final : public View {
 public:
  // `window` and `sound` may be null (no window yet, no audio device); the view then has no window
  // and stays silent. Both must outlive the view.
  SdlView(Size size, Window* window, SoundOutput* sound);

  Window* window() override { return window_; }
  void hideCursorUntilMouseMoves() override;
  void unhideCursor() override;
  void cursorMoved() override;
  SoundOutput& soundOutput() override;

 private:
  Window* window_;
  SoundOutput* sound_;
  SilentSoundOutput silence_;
  bool cursorHidden_ = false;
};

}  // namespace zb
