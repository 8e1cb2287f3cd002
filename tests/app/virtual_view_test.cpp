#include "app/virtual_view.hpp"

#include <gtest/gtest.h>

#include "app/headless_test_support.hpp"
#include "engine/audio_node.hpp"

namespace zb::test {
namespace {

struct FullScreenLog {
  std::vector<std::string> notices;
  void observe(VirtualView& view) {
    const void* window = view.window();
    for (auto name : {kWindowDidEnterFullScreenNotification, kWindowDidExitFullScreenNotification}) {
      view.notificationCenter().addObserver(this, name, window, [this, name] { notices.emplace_back(name); });
    }
  }
};

TEST(VirtualWindow, WindowManagerTogglesAtOnceAndGameRequestsAtTheNextFrame) {
  VirtualView view(Size{800, 600});
  FullScreenLog log;
  log.observe(view);
  VirtualWindow& window = view.virtualWindow();

  window.toggleNow();
  EXPECT_TRUE(window.isFullScreen());
  EXPECT_EQ(log.notices, std::vector<std::string>{std::string(kWindowDidEnterFullScreenNotification)});

  view.window()->toggleFullScreen();
  EXPECT_TRUE(window.isFullScreen()) << "a game request waits for the frame";
  EXPECT_EQ(log.notices.size(), 1u);
  window.finishPendingToggles();
  EXPECT_FALSE(window.isFullScreen());
  EXPECT_EQ(log.notices.back(), kWindowDidExitFullScreenNotification);

  // Two requests in one frame are two flips, each with its notice.
  view.window()->toggleFullScreen();
  view.window()->toggleFullScreen();
  window.finishPendingToggles();
  EXPECT_FALSE(window.isFullScreen());
  EXPECT_EQ(log.notices.size(), 4u);
  window.finishPendingToggles();
  EXPECT_EQ(log.notices.size(), 4u) << "finished requests do not come back";
}

TEST(VirtualView, CursorStaysHiddenUntilTheMouseMoves) {
  VirtualView view(Size{800, 600});
  EXPECT_FALSE(view.cursorHidden());
  view.hideCursorUntilMouseMoves();
  EXPECT_TRUE(view.cursorHidden());
  view.mouseMoved();
  EXPECT_FALSE(view.cursorHidden());
  view.hideCursorUntilMouseMoves();
  view.unhideCursor();
  EXPECT_FALSE(view.cursorHidden());
}

TEST(RecordingSoundOutput, RecordsExistingEffectsByStemOnceEach) {
  TempFolder folder("zb-recording-sound");
  RecordingSoundOutput sound;
  EXPECT_TRUE(sound.playEffect(folder.touch("jump.mp3")));
  EXPECT_FALSE(sound.playEffect(folder.path() / "click.mp3"));
  EXPECT_TRUE(sound.playEffect(folder.touch("Babylaughs/baby-laugh-3.mp3")));
  EXPECT_EQ(sound.takeEffects(), (std::vector<std::string>{"jump", "baby-laugh-3"}));
  EXPECT_TRUE(sound.takeEffects().empty());
}

TEST(RecordingSoundOutput, TracksTheLoopsVolumeAndState) {
  RecordingSoundOutput sound;
  AudioNode music("bg-music.mp3");
  EXPECT_FALSE(sound.loop(music));
  music.setVolume(0.25f);
  sound.startLoop(music);
  ASSERT_TRUE(sound.loop(music));
  EXPECT_TRUE(sound.loop(music)->playing);
  EXPECT_EQ(sound.loop(music)->volume, 0.25f);
  sound.setLoopVolume(music, 0.6f);
  EXPECT_EQ(sound.loop(music)->volume, 0.6f);
  sound.stopLoop(music);
  EXPECT_FALSE(sound.loop(music)->playing);
}

}  // namespace
}  // namespace zb::test
