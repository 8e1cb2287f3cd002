// The window on SDL's offscreen video driver, which needs no display.
#include "platform/sdl_window.hpp"

#include <SDL.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "engine/notification_center.hpp"

namespace zb {
namespace {

class OffscreenVideo : public testing::Test {
 protected:
  void SetUp() override {
    setenv("SDL_VIDEODRIVER", "offscreen", 1);
    ASSERT_TRUE(initSdlVideo(error)) << error;
  }
  void TearDown() override {
    SDL_Quit();
    unsetenv("SDL_VIDEODRIVER");
  }
  std::string error;
};

TEST_F(OffscreenVideo, ReportsEachFullScreenChangeOnceIncludingAStartInFullScreen) {
  NotificationCenter center;
  std::vector<std::string> posted;
  center.addObserver(this, kWindowDidEnterFullScreenNotification, nullptr, [&] { posted.push_back("enter"); });
  center.addObserver(this, kWindowDidExitFullScreenNotification, nullptr, [&] { posted.push_back("exit"); });
  auto window = SdlWindow::open({400, 300}, false, error);
  ASSERT_NE(window, nullptr) << error;
  window->postFullScreenChanges(center);
  window->toggleFullScreen();
  window->postFullScreenChanges(center);
  EXPECT_TRUE(window->isFullScreen());
  window->postFullScreenChanges(center);
  window->toggleFullScreen();
  window->postFullScreenChanges(center);
  EXPECT_EQ(posted, (std::vector<std::string>{"enter", "exit"}));
  window.reset();
  window = SdlWindow::open({400, 300}, true, error);
  ASSERT_NE(window, nullptr) << error;
  window->postFullScreenChanges(center);
  EXPECT_EQ(posted.size(), 3u) << "a window opened in full screen announces it on the first pass";
}

}  // namespace
}  // namespace zb
