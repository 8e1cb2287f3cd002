#pragma once
// A view and window that exist only in memory, for headless runs. The window behaves like a real
// one where the game can tell the difference: the game's own full-screen request takes effect a
// frame later (a real window animates first), while the window manager's toggle is immediate.
#include "headless/recording_sound.hpp"
#include "engine/view.hpp"

namespace zb {

class VirtualWindow final : public Window {
 public:
  explicit VirtualWindow(NotificationCenter& notifications) : notifications_(notifications) {}

  bool isFullScreen() const override { return fullScreen_; }
  // The game's request: remembered until the next frame.
  void toggleFullScreen() override { ++pendingToggles_; }

  // The window manager's toggle: the state flips and the notification goes out now.
  void toggleNow();
  // Completes the requests the game made since the last frame, in order.
  void finishPendingToggles();

 private:
  NotificationCenter& notifications_;
  bool fullScreen_ = false;
  int pendingToggles_ = 0;
};

class VirtualView final : public View {
 public:
  explicit VirtualView(Size size) : View(size), window_(notificationCenter()) {}

  Window* window() override { return &window_; }
  VirtualWindow& virtualWindow() { return window_; }
  SoundOutput& soundOutput() override { return sound_; }
  RecordingSoundOutput& recorder() { return sound_; }

  void hideCursorUntilMouseMoves() override { cursorHidden_ = true; }
  void unhideCursor() override { cursorHidden_ = false; }
  void cursorMoved() override { cursorHidden_ = false; }
  bool cursorHidden() const { return cursorHidden_; }

 private:
  VirtualWindow window_;
  RecordingSoundOutput sound_;
  bool cursorHidden_ = false;
};

}  // namespace zb
