// The interface node tree: HUD read-outs and buttons, and the four pages with their labels. Every
// piece of interface is a label inside the scene, under uiLayer; positions and scaled sizes come
// from the layout, colours from the palette (except the pieces the palette deliberately skips).
#include <algorithm>
#include <string>

#include "scene/game_scene.hpp"

namespace zb {
namespace {

constexpr const char* kFontName = "Menlo";
constexpr double kDimAlpha = 0.35;
constexpr int kTauntMaxLines = 2;
constexpr double kTauntWrapFraction = 0.8;  // of the scene width when the tree is built

// Draw order goes by z alone: dim below the HUD, pages above it in their own order, HUD buttons on top.
constexpr double kDimZ = 90;
constexpr double kHudLabelZ = 100;
constexpr double kHudButtonZ = 130;
constexpr double kMenuZ = 100;
constexpr double kSettingsZ = 110;
constexpr double kGameOverZ = 120;
constexpr double kPauseZ = 125;

// Sizes and positions come from the layout alone.
void style(LabelNode& label, const std::string& text, Color color) {
  label.setText(text);
  label.fontColor = color;
  label.horizontalAlignment = HorizontalAlignment::center;
}

void addPage(Node& parent, Node& page, double z, bool hidden) {
  page.zPosition = z;
  page.hidden = hidden;
  parent.addChild(page.shared_from_this());
}

// A button is a label with a name the clicks are routed by.
void makeButton(LabelNode& button, const std::string& text, const std::string& name) {
  style(button, text, Color::black());
  button.name = name;
}

}  // namespace

LabelNodePtr GameScene::buttonLabel(const std::string& text, const std::string& name) {
  auto button = std::make_shared<LabelNode>(kFontName);
  makeButton(*button, text, name);
  return button;
}

void GameScene::setupUI() {
  const Size sceneSize = size();

  scoreLabel->fontColor = Color::black();
  scoreLabel->horizontalAlignment = HorizontalAlignment::left;
  scoreLabel->zPosition = kHudLabelZ;
  highScoreLabel->fontColor = Color::darkGray();
  highScoreLabel->horizontalAlignment = HorizontalAlignment::left;
  highScoreLabel->zPosition = kHudLabelZ;
  uiLayer->addChild(scoreLabel);
  uiLayer->addChild(highScoreLabel);

  dimBackground->fillColor = Color::black().withAlpha(kDimAlpha);
  dimBackground->strokeColor = Color::clear();
  dimBackground->zPosition = kDimZ;
  dimBackground->hidden = true;
  uiLayer->addChild(dimBackground);

  style(*fullscreenButton, "Full Screen", Color::black());
  fullscreenButton->name = "btn_fullscreen";
  fullscreenButton->horizontalAlignment = HorizontalAlignment::right;
  fullscreenButton->zPosition = kHudButtonZ;
  uiLayer->addChild(fullscreenButton);
  updateFullscreenButtonTitle();

  makeButton(*pauseButton, "Pause", "btn_pause");
  pauseButton->horizontalAlignment = HorizontalAlignment::right;
  pauseButton->zPosition = kHudButtonZ;
  uiLayer->addChild(pauseButton);

  addPage(*uiLayer, *menuOverlay, kMenuZ, false);
  style(*titleLabel, "Zindlebop", Color::black());
  style(*subtitleLabel, "Run, jump, survive", Color::darkGray());
  makeButton(*startButton, "Start", "btn_start");
  makeButton(*settingsButton, "Settings", "btn_settings");
  for (const LabelNodePtr& label : {titleLabel, subtitleLabel, startButton, settingsButton}) {
    menuOverlay->addChild(label);
  }

  addPage(*uiLayer, *settingsOverlay, kSettingsZ, true);
  style(*settingsTitle, "Settings", Color::black());
  makeButton(*toggleFPSLabel, "Show FPS: Off", "btn_fps");
  makeButton(*musicToggleLabel, "Music: On", "btn_music");
  // The read-out is named, but without the button prefix, so a click on it does nothing.
  style(*volumeLabel, "Volume: 60%", Color::black());
  volumeLabel->name = "lbl_volume";
  makeButton(*volDownButton, "-", "btn_vol_down");
  makeButton(*volUpButton, "+", "btn_vol_up");
  makeButton(*settingsBackButton, "Back", "btn_back");
  for (const LabelNodePtr& label : {settingsTitle, toggleFPSLabel, musicToggleLabel, volumeLabel, volDownButton,
                                    volUpButton, settingsBackButton}) {
    settingsOverlay->addChild(label);
  }

  addPage(*uiLayer, *gameOverOverlay, kGameOverZ, true);
  style(*goTitle, "Game Over", Color::black());
  style(*goScore, "", Color::black());
  style(*goHigh, "", Color::darkGray());
  makeButton(*retryButton, "Retry", "btn_retry");
  makeButton(*menuButton, "Main Menu", "btn_menu");
  style(*tauntLabel, "", Color::darkGray());
  tauntLabel->setNumberOfLines(kTauntMaxLines);
  // Set once from the width at start-up and kept through resizes.
  tauntLabel->setPreferredMaxLayoutWidth(sceneSize.width * kTauntWrapFraction);
  for (const LabelNodePtr& label : {goTitle, goScore, goHigh, tauntLabel, retryButton, menuButton}) {
    gameOverOverlay->addChild(label);
  }

  addPage(*uiLayer, *pauseOverlay, kPauseZ, true);
  // The title keeps the default label colour, so the pause page reads the same under every palette.
  pauseTitle->setText("Paused");
  pauseTitle->horizontalAlignment = HorizontalAlignment::center;
  makeButton(*resumeButton, "Resume", "btn_resume");
  // Held by no field: restartButton() finds it again by its name.
  LabelNodePtr restart = buttonLabel("Restart", kRestartButtonName);
  makeButton(*pauseMenuButton, "Main Menu", "btn_pause_menu");
  for (const LabelNodePtr& label : {pauseTitle, resumeButton, restart, pauseMenuButton}) {
    pauseOverlay->addChild(label);
  }
}

LabelNodePtr GameScene::restartButton() const {
  // A missing or foreign node is no button.
  return pauseOverlay ? std::dynamic_pointer_cast<LabelNode>(pauseOverlay->childNamed(kRestartButtonName)) : nullptr;
}

void GameScene::updateScoreLabels() {
  scoreLabel->setText("Score: " + std::to_string(score));
  // The store is read afresh each time: another copy of the game may have written a better score.
  highScoreLabel->setText("High: " + std::to_string(std::max(highScore, storedHighScore())));
}

}  // namespace zb
