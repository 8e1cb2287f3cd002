#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "scene/scene_fixture.hpp"

namespace zb {
namespace {

using test::AttachedScene;
using Align = HorizontalAlignment;

struct Row {
  LabelNode* label;
  std::string name;
  std::string text;
  double baseSize;
  Color color;
  Align alignment;
};

void expectRows(const Node& parent, const std::vector<Row>& rows) {
  ASSERT_EQ(parent.children().size(), rows.size());
  for (size_t i = 0; i < rows.size(); ++i) {
    const Row& row = rows[i];
    SCOPED_TRACE(row.text.empty() ? row.name : row.text);
    EXPECT_EQ(parent.children()[i].get(), row.label) << "child " << i;
    EXPECT_EQ(row.label->name, row.name);
    EXPECT_EQ(row.label->text(), row.text);
    EXPECT_EQ(row.label->fontName(), "Menlo");
    EXPECT_EQ(row.label->fontSize(), row.baseSize);
    EXPECT_EQ(row.label->fontColor, row.color);
    EXPECT_EQ(row.label->horizontalAlignment, row.alignment);
  }
}

// Built on a detached scene, so the first palette and layout have not yet replaced the setup values.
TEST(InterfaceTree, SetupBuildsEveryPageInOrderWithItsBaseLooks) {
  GameScene scene(Size{800, 600});
  scene.setupUI();
  const Color black = Color::black(), grey = Color::darkGray(), white = Color::white();
  const Align c = Align::center;

  const std::vector<Node*> top = {scene.scoreLabel.get(),      scene.highScoreLabel.get(), scene.dimBackground.get(),
                                  scene.fullscreenButton.get(), scene.pauseButton.get(),    scene.menuOverlay.get(),
                                  scene.settingsOverlay.get(),  scene.gameOverOverlay.get(), scene.pauseOverlay.get()};
  ASSERT_EQ(scene.uiLayer->children().size(), top.size());
  for (size_t i = 0; i < top.size(); ++i) EXPECT_EQ(scene.uiLayer->children()[i].get(), top[i]) << "child " << i;

  EXPECT_EQ(scene.scoreLabel->fontSize(), 18);
  EXPECT_EQ(scene.scoreLabel->horizontalAlignment, Align::left);
  EXPECT_EQ(scene.highScoreLabel->fontSize(), 14);
  EXPECT_EQ(scene.highScoreLabel->fontColor, grey);
  EXPECT_EQ(scene.fullscreenButton->name, "btn_fullscreen");
  EXPECT_EQ(scene.fullscreenButton->text(), "Full Screen");
  EXPECT_EQ(scene.fullscreenButton->fontSize(), 14);
  EXPECT_EQ(scene.fullscreenButton->horizontalAlignment, Align::right);
  EXPECT_EQ(scene.pauseButton->name, "btn_pause");
  EXPECT_EQ(scene.pauseButton->text(), "Pause");
  EXPECT_EQ(scene.pauseButton->horizontalAlignment, Align::right);

  expectRows(*scene.menuOverlay, {{scene.titleLabel.get(), "", "Zindlebop", 32, black, c},
                                  {scene.subtitleLabel.get(), "", "Run, jump, survive", 16, grey, c},
                                  {scene.startButton.get(), "btn_start", "Start", 18, black, c},
                                  {scene.settingsButton.get(), "btn_settings", "Settings", 18, black, c}});
  expectRows(*scene.settingsOverlay, {{scene.settingsTitle.get(), "", "Settings", 26, black, c},
                                      {scene.toggleFPSLabel.get(), "btn_fps", "Show FPS: Off", 18, black, c},
                                      {scene.musicToggleLabel.get(), "btn_music", "Music: On", 18, black, c},
                                      {scene.volumeLabel.get(), "lbl_volume", "Volume: 60%", 18, black, c},
                                      {scene.volDownButton.get(), "btn_vol_down", "-", 18, black, c},
                                      {scene.volUpButton.get(), "btn_vol_up", "+", 18, black, c},
                                      {scene.settingsBackButton.get(), "btn_back", "Back", 18, black, c}});
  expectRows(*scene.gameOverOverlay, {{scene.goTitle.get(), "", "Game Over", 28, black, c},
                                      {scene.goScore.get(), "", "", 18, black, c},
                                      {scene.goHigh.get(), "", "", 16, grey, c},
                                      {scene.tauntLabel.get(), "", "", 16, grey, c},
                                      {scene.retryButton.get(), "btn_retry", "Retry", 18, black, c},
                                      {scene.menuButton.get(), "btn_menu", "Main Menu", 18, black, c}});
  auto* restart = dynamic_cast<LabelNode*>(scene.pauseOverlay->childNamed("btn_pause_restart").get());
  ASSERT_NE(restart, nullptr);
  expectRows(*scene.pauseOverlay, {{scene.pauseTitle.get(), "", "Paused", 28, white, c},
                                   {scene.resumeButton.get(), "btn_resume", "Resume", 18, black, c},
                                   {restart, "btn_pause_restart", "Restart", 18, black, c},
                                   {scene.pauseMenuButton.get(), "btn_pause_menu", "Main Menu", 18, black, c}});

  EXPECT_EQ(scene.tauntLabel->numberOfLines(), 2);
  EXPECT_DOUBLE_EQ(scene.tauntLabel->preferredMaxLayoutWidth(), 640);
  EXPECT_EQ(scene.dimBackground->path.boundingBox(), Rect::make(-400, -300, 800, 600));
  EXPECT_EQ(scene.dimBackground->fillColor, Color::rgba(0, 0, 0, 0.35));
  EXPECT_EQ(scene.dimBackground->strokeColor, Color::clear());
}

TEST(InterfaceTree, DepthsPutPagesAboveTheDimAndHudButtonsOnTop) {
  AttachedScene s;
  EXPECT_EQ(s->dimBackground->zPosition, 90);
  EXPECT_EQ(s->scoreLabel->zPosition, 100);
  EXPECT_EQ(s->highScoreLabel->zPosition, 100);
  EXPECT_EQ(s->menuOverlay->zPosition, 100);
  EXPECT_EQ(s->settingsOverlay->zPosition, 110);
  EXPECT_EQ(s->gameOverOverlay->zPosition, 120);
  EXPECT_EQ(s->pauseOverlay->zPosition, 125);
  EXPECT_EQ(s->fullscreenButton->zPosition, 130);
  EXPECT_EQ(s->pauseButton->zPosition, 130);
  // Page children take their page's depth.
  EXPECT_EQ(s->retryButton->zPosition, 0);
  // The figure and the scenery stay under the dim.
  EXPECT_LT(s->playerContainer->zPosition, 90);
  EXPECT_LT(s->backgroundGroup->zPosition, 90);
}

struct Visibility {
  bool dim, menu, settings, gameOver, pause, pauseButton;
  friend bool operator==(const Visibility&, const Visibility&) = default;
};
Visibility visibility(const GameScene& scene) {
  return {!scene.dimBackground->hidden, !scene.menuOverlay->hidden,     !scene.settingsOverlay->hidden,
          !scene.gameOverOverlay->hidden, !scene.pauseOverlay->hidden, !scene.pauseButton->hidden};
}

TEST(InterfaceTree, EachStateShowsItsOwnPage) {
  AttachedScene s;
  EXPECT_EQ(visibility(*s), (Visibility{true, true, false, false, false, false}));
  s->openSettings();
  EXPECT_EQ(visibility(*s), (Visibility{true, false, true, false, false, false}));
  s->showMenu();
  s->startGame();
  EXPECT_EQ(visibility(*s), (Visibility{false, false, false, false, false, true}));
  s->pauseGame();
  EXPECT_EQ(visibility(*s), (Visibility{true, false, false, false, true, true}));
  s->resumeGame();
  EXPECT_EQ(visibility(*s), (Visibility{false, false, false, false, false, true}));
  s->showGameOver();
  EXPECT_EQ(visibility(*s), (Visibility{true, false, false, true, false, false}));
  EXPECT_FALSE(s->scoreLabel->isHiddenInTree());
  EXPECT_FALSE(s->highScoreLabel->isHiddenInTree());
  EXPECT_FALSE(s->fullscreenButton->isHiddenInTree());
}

TEST(Hud, ShowsScoreAndTheBetterOfMemoryAndStore) {
  AttachedScene fresh;
  EXPECT_EQ(fresh->scoreLabel->text(), "Score: 0");
  EXPECT_EQ(fresh->highScoreLabel->text(), "High: 0");

  test::SceneOptions stored;
  stored.preferences->setInteger(420, "quorraHighScore");
  AttachedScene s(stored);
  EXPECT_EQ(s->highScoreLabel->text(), "High: 420");

  s->score = 1234;
  s->highScore = 1500;
  s->updateScoreLabels();
  EXPECT_EQ(s->scoreLabel->text(), "Score: 1234");
  EXPECT_EQ(s->highScoreLabel->text(), "High: 1500");

  // Another copy of the game wrote a better score: read afresh at every call.
  s.preferences->setInteger(2000, "quorraHighScore");
  s->updateScoreLabels();
  EXPECT_EQ(s->highScoreLabel->text(), "High: 2000");
  s.preferences->removeObject("quorraHighScore");
  s->updateScoreLabels();
  EXPECT_EQ(s->highScoreLabel->text(), "High: 1500");

  s->score = -7;
  s->updateScoreLabels();
  EXPECT_EQ(s->scoreLabel->text(), "Score: -7");
}

}  // namespace
}  // namespace zb
