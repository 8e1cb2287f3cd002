#include <gtest/gtest.h>

#include <limits>
#include <set>
#include <string>

#include "engine/random.hpp"
#include "scene/scene_fixture.hpp"

namespace zb {
namespace {

using test::AttachedScene;
using test::SceneOptions;

TEST(SettingsTexts, ReadOutsFollowTheSettings) {
  AttachedScene s;
  s->openSettings();
  EXPECT_EQ(s->toggleFPSLabel->text(), "Show FPS: Off");
  EXPECT_EQ(s->musicToggleLabel->text(), "Music: On");
  EXPECT_EQ(s->volumeLabel->text(), "Volume: 60%");

  s->settingShowFPS = true;
  s->settingMusicEnabled = false;
  s->refreshSettingsTexts();
  EXPECT_EQ(s->toggleFPSLabel->text(), "Show FPS: On");
  EXPECT_EQ(s->musicToggleLabel->text(), "Music: Off");
}

TEST(SettingsTexts, VolumeIsTruncatedInSinglePrecision) {
  AttachedScene s;
  s->openSettings();
  // Six presses from 0.6 leave a tiny positive volume, the seventh exactly 0: both read 0.
  for (int i = 0; i < 6; ++i) s->volumeDown();
  EXPECT_GT(s->settingMusicVolume, 0.0f);
  EXPECT_EQ(s->volumeLabel->text(), "Volume: 0%");
  s->volumeDown();
  EXPECT_EQ(s->settingMusicVolume, 0.0f);
  EXPECT_EQ(s->volumeLabel->text(), "Volume: 0%");

  for (int i = 0; i < 12; ++i) s->volumeUp();
  EXPECT_EQ(s->volumeLabel->text(), "Volume: 100%");
  s->volumeDown();
  s->volumeDown();
  EXPECT_EQ(s->volumeLabel->text(), "Volume: 79%");

  s->settingMusicVolume = 0.8f;
  s->refreshSettingsTexts();
  EXPECT_EQ(s->volumeLabel->text(), "Volume: 80%");
  // 0.7f is just under 0.7: in double precision the product would truncate to 69.
  s->settingMusicVolume = 0.7f;
  s->refreshSettingsTexts();
  EXPECT_EQ(s->volumeLabel->text(), "Volume: 70%");
  s->settingMusicVolume = -0.015f;  // a foreign value from the store truncates toward zero
  s->refreshSettingsTexts();
  EXPECT_EQ(s->volumeLabel->text(), "Volume: -1%");
}

TEST(SettingsTextsDeathTest, VolumeThatIsNotANumberStopsTheGame) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_DEATH(
      {
        GameScene scene(Size{800, 600});
        scene.setupUI();
        scene.settingMusicVolume = std::numeric_limits<float>::quiet_NaN();
        scene.refreshSettingsTexts();
      },
      "");
}

TEST(GameOverTexts, ScoreBestAndATauntDrawnWithoutBias) {
  AttachedScene s;
  ASSERT_EQ(s->taunts.size(), 20u);
  s->score = 0;
  s->highScore = 0;
  s.preferences->setInteger(999, "quorraHighScore");  // the page shows the field, not the store
  s->random().seed(9);
  s->updateGameOverOverlay();
  EXPECT_EQ(s->goScore->text(), "Score: 0");
  EXPECT_EQ(s->goHigh->text(), "High: 0");
  Random replay(9);
  EXPECT_EQ(s->tauntLabel->text(), s->taunts[replay.uniformIndex(20)]);

  std::set<std::string> seen;
  for (int i = 0; i < 400; ++i) {
    s->updateGameOverOverlay();
    EXPECT_EQ(s->tauntLabel->text(), s->taunts[replay.uniformIndex(20)]);
    seen.insert(s->tauntLabel->text());
  }
  EXPECT_EQ(seen.size(), 20u);
}

TEST(GameOverTexts, EmptyTauntListFallsBackToTheRetryHint) {
  AttachedScene s;
  s->taunts.clear();
  s->updateGameOverOverlay();
  EXPECT_EQ(s->tauntLabel->text(), "Press Space to Retry");
}

TEST(GameOverTexts, LongTauntWrapsToTwoLinesAtTheStartUpWidth) {
  SceneOptions narrow;
  narrow.size = {300, 400};
  AttachedScene s(narrow);
  EXPECT_DOUBLE_EQ(s->tauntLabel->preferredMaxLayoutWidth(), 240);
  s.view->setSize({1600, 900});
  EXPECT_DOUBLE_EQ(s->tauntLabel->preferredMaxLayoutWidth(), 240);

  s->tauntLabel->setText("Trip much?");
  const double oneLine = s->tauntLabel->contentBounds()->height();
  s->tauntLabel->setText("High score? Maybe tomorrow. Press space. Redeem yourself. Again and again.");
  const Rect wrapped = *s->tauntLabel->contentBounds();
  EXPECT_GT(wrapped.height(), 1.5 * oneLine);
  EXPECT_LT(wrapped.height(), 2.5 * oneLine);
}

TEST(FullScreenTitle, FollowsTheWindowThroughBothNotifications) {
  AttachedScene s;
  EXPECT_EQ(s->fullscreenButton->text(), "Full Screen");
  test::TestWindow& window = s.view->testWindow;

  window.fullScreen = true;
  s.view->notificationCenter().post(kWindowDidEnterFullScreenNotification, &window);
  EXPECT_EQ(s->fullscreenButton->text(), "Exit Full Screen");

  window.fullScreen = false;
  s.view->notificationCenter().post(kWindowDidExitFullScreenNotification, &window);
  EXPECT_EQ(s->fullscreenButton->text(), "Full Screen");
}

TEST(FullScreenTitle, NoWindowOrNoViewMeansFullScreen) {
  SceneOptions windowless;
  windowless.withWindow = false;
  AttachedScene s(windowless);
  s->updateFullscreenButtonTitle();
  EXPECT_EQ(s->fullscreenButton->text(), "Full Screen");

  GameScene detached(Size{800, 600});
  detached.setupUI();
  detached.fullscreenButton->setText("Exit Full Screen");
  detached.windowDidEnterFullScreen();
  EXPECT_EQ(detached.fullscreenButton->text(), "Full Screen");
}

}  // namespace
}  // namespace zb
