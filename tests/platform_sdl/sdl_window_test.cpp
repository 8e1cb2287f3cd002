// The window on SDL's offscreen video driver, which needs no display.
#include "platform_sdl/sdl_window.hpp"

#include <SDL.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "engine/notification_center.hpp"
#include "platform_sdl/sdl_view.hpp"
#include "platform_sdl/canvas_factory.hpp"
#include "platform_sdl/window_loop.hpp"

namespace zb {
namespace {

TEST(OffscreenVideo, ReportsEachFullScreenChangeOnceAndTheSceneTakesTheWindowsSizeEvenWhenNoEventSaidSo) {
  setenv("SDL_VIDEODRIVER", "offscreen", 1);
  std::string error;
  ASSERT_TRUE(initSdlVideo(error)) << error;
  NotificationCenter center;
  std::vector<std::string> posted;
  center.addObserver(this, kWindowDidEnterFullScreenNotification, nullptr, [&] { posted.push_back("enter"); });
  center.addObserver(this, kWindowDidExitFullScreenNotification, nullptr, [&] { posted.push_back("exit"); });
  auto window = SdlWindow::open({400, 300}, false, error);
  ASSERT_NE(window, nullptr) << error;
  window->postFullScreenChanges(center);
  for (int toggle = 0; toggle < 2; ++toggle) {
    window->toggleFullScreen();
    window->postFullScreenChanges(center);
    window->postFullScreenChanges(center);
  }
  // Without a window manager no event may come for a change of size, and with one a size may be refused:
  // either way the scene must fill the window it is actually shown in.
  auto canvas = openWindowCanvas(window->handle(), error);
  ASSERT_NE(canvas, nullptr) << error;
  SdlView view(window->sizeInPoints(), window.get(), nullptr);
  SDL_SetWindowSize(window->handle(), 640, 480);
  SDL_FlushEvents(SDL_FIRSTEVENT, SDL_LASTEVENT);
  FrameLoopOptions options;
  options.frameLimit = 1;
  runFrameLoop(view, *window, *canvas, options);
  EXPECT_EQ(view.size(), (Size{640, 480}));

  auto startedFull = SdlWindow::open({400, 300}, true, error);
  ASSERT_NE(startedFull, nullptr) << error;
  startedFull->postFullScreenChanges(center);
  EXPECT_EQ(posted, (std::vector<std::string>{"enter", "exit", "enter"})) << "a start in full screen is announced";
  SDL_Quit();
  unsetenv("SDL_VIDEODRIVER");
}

}  // namespace
}  // namespace zb
