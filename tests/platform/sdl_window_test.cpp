// The window, its canvas and the frame loop on SDL's offscreen video driver, which needs no display.
#include "platform/sdl_window.hpp"

#include <SDL.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "engine/scene.hpp"
#include "platform/frame_loop.hpp"
#include "platform/sdl_view.hpp"
#include "platform/window_canvas.hpp"

namespace zb {
namespace {

class OffscreenVideo : public testing::Test {
 protected:
  void SetUp() override {
    setenv("SDL_VIDEODRIVER", "offscreen", 1);
    std::string error;
    ASSERT_TRUE(initSdlVideo(error)) << error;
    window = SdlWindow::open({400, 300}, false, error);
    ASSERT_NE(window, nullptr) << error;
  }
  void TearDown() override {
    window.reset();
    SDL_Quit();
    unsetenv("SDL_VIDEODRIVER");
  }
  std::unique_ptr<SdlWindow> window;
};

class CountingScene : public Scene {
 public:
  int updates = 0;
  void update(double) override { ++updates; }
};

TEST_F(OffscreenVideo, OpensAtTheAskedSizeAndReportsFullScreenChangesOnce) {
  EXPECT_EQ(window->sizeInPoints(), (Size{400, 300}));
  NotificationCenter center;
  std::vector<std::string> posted;
  const void* object = static_cast<const Window*>(window.get());
  center.addObserver(this, kWindowDidEnterFullScreenNotification, object, [&] { posted.push_back("enter"); });
  center.addObserver(this, kWindowDidExitFullScreenNotification, object, [&] { posted.push_back("exit"); });

  window->postFullScreenChanges(center);
  EXPECT_TRUE(posted.empty());
  window->toggleFullScreen();
  EXPECT_TRUE(window->isFullScreen());
  window->postFullScreenChanges(center);
  window->postFullScreenChanges(center);
  window->toggleFullScreen();
  EXPECT_FALSE(window->isFullScreen());
  window->postFullScreenChanges(center);
  EXPECT_EQ(posted, (std::vector<std::string>{"enter", "exit"}));
}

TEST_F(OffscreenVideo, AWindowOpenedInFullScreenAnnouncesItOnTheFirstPass) {
  window.reset();
  std::string error;
  window = SdlWindow::open({400, 300}, true, error);
  ASSERT_NE(window, nullptr) << error;
  NotificationCenter center;
  int entered = 0;
  center.addObserver(this, kWindowDidEnterFullScreenNotification, nullptr, [&] { ++entered; });
  window->postFullScreenChanges(center);
  EXPECT_EQ(entered, 1);
}

TEST_F(OffscreenVideo, TheLoopStepsDrawsAndStopsAfterTheFrameLimit) {
  std::string error;
  std::unique_ptr<WindowCanvas> canvas = WindowCanvas::create(window->handle(), error);
  ASSERT_NE(canvas, nullptr) << error;
  SdlView view(window->sizeInPoints(), window.get(), nullptr);
  auto scene = std::make_shared<CountingScene>();
  view.presentScene(scene);
  view.showsFPS = true;

  runFrameLoop(view, *window, *canvas, {.frameLimit = 12});
  EXPECT_GE(scene->updates, 12);
  EXPECT_LE(scene->updates, 12 * 4) << "catch-up is bounded";
  EXPECT_DOUBLE_EQ(canvas->pixelScale(), 1.0);
  view.dismissScene();
}

}  // namespace
}  // namespace zb
