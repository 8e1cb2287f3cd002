// The interface tree as built: every page's rows in order, and the depths that stack them.
#include <gtest/gtest.h>

#include "scene/scene_fixture.hpp"

namespace zb {
namespace {

struct Row {
  const Node* node;
  const char* name;
  const char* text;
  double fontSize;  // or, for the top level, the depth
};

void expectChildren(const Node& parent, const std::vector<Row>& rows) {
  ASSERT_EQ(parent.children().size(), rows.size());
  for (size_t i = 0; i < rows.size(); ++i) {
    SCOPED_TRACE(std::string(rows[i].name) + rows[i].text);
    EXPECT_EQ(parent.children()[i].get(), rows[i].node);
    EXPECT_EQ(rows[i].node->name, rows[i].name);
    if (auto* label = dynamic_cast<const LabelNode*>(rows[i].node)) {
      EXPECT_EQ(label->text(), rows[i].text);
    }
  }
}

// Built on a detached scene, so the first palette and layout have not yet replaced the setup values.
TEST(InterfaceTree, SetupBuildsEveryPageInOrderAtItsDepth) {
  GameScene s(Size{800, 600});
  s.setupUI();
  const std::vector<std::pair<const Node*, double>> depths = {
      {s.scoreLabel.get(), 100},       {s.highScoreLabel.get(), 100}, {s.dimBackground.get(), 90},
      {s.fullscreenButton.get(), 130}, {s.pauseButton.get(), 130},    {s.menuOverlay.get(), 100},
      {s.settingsOverlay.get(), 110},  {s.gameOverOverlay.get(), 120}, {s.pauseOverlay.get(), 125}};
  ASSERT_EQ(s.uiLayer->children().size(), depths.size());
  for (size_t i = 0; i < depths.size(); ++i) {
    EXPECT_EQ(s.uiLayer->children()[i].get(), depths[i].first) << "child " << i;
    EXPECT_EQ(depths[i].first->zPosition, depths[i].second) << "child " << i;
  }
  EXPECT_EQ(s.retryButton->zPosition, 0) << "page children take their page's depth";
  EXPECT_LT(s.playerContainer->zPosition, 90) << "the figure stays under the dim";
  EXPECT_EQ(s.fullscreenButton->text(), "Full Screen");

  expectChildren(*s.menuOverlay, {{s.titleLabel.get(), "", "Zindlebop", 32},
                                  {s.subtitleLabel.get(), "", "Run, jump, survive", 16},
                                  {s.startButton.get(), "btn_start", "Start", 18},
                                  {s.settingsButton.get(), "btn_settings", "Settings", 18}});
  expectChildren(*s.settingsOverlay, {{s.settingsTitle.get(), "", "Settings", 26},
                                      {s.toggleFPSLabel.get(), "btn_fps", "Show FPS: Off", 18},
                                      {s.musicToggleLabel.get(), "btn_music", "Music: On", 18},
                                      {s.volumeLabel.get(), "lbl_volume", "Volume: 60%", 18},
                                      {s.volDownButton.get(), "btn_vol_down", "-", 18},
                                      {s.volUpButton.get(), "btn_vol_up", "+", 18},
                                      {s.settingsBackButton.get(), "btn_back", "Back", 18}});
  expectChildren(*s.gameOverOverlay, {{s.goTitle.get(), "", "Game Over", 28},
                                      {s.goScore.get(), "", "", 18},
                                      {s.goHigh.get(), "", "", 16},
                                      {s.tauntLabel.get(), "", "", 16},
                                      {s.retryButton.get(), "btn_retry", "Retry", 18},
                                      {s.menuButton.get(), "btn_menu", "Main Menu", 18}});
  expectChildren(*s.pauseOverlay, {{s.pauseTitle.get(), "", "Paused", 28},
                                   {s.resumeButton.get(), "btn_resume", "Resume", 18},
                                   {s.pauseOverlay->children().at(2).get(), "btn_pause_restart", "Restart", 18},
                                   {s.pauseMenuButton.get(), "btn_pause_menu", "Main Menu", 18}});
}

}  // namespace
}  // namespace zb
