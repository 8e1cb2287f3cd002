// Places every interface node for the current scene size. One factor, layoutScale, scales every
// font size and margin; each page is a centred column hanging below an anchor height.
#include <memory>

#include "engine/path.hpp"
#include "scene/game_scene.hpp"

namespace zb {
namespace {

// The design size the interface is drawn for at scale 1.
constexpr double kDesignHeight = 200;
constexpr double kDesignWidth = 800;

// Page anchors as fractions of the scene height.
constexpr double kMenuAnchor = 0.6;
constexpr double kSettingsAnchor = 0.68;
constexpr double kGameOverAnchor = 0.62;
constexpr double kPauseAnchor = 0.64;

constexpr double kVolumeButtonOffset = 60;  // "-" and "+" sit this far either side of the centre

// One row of a page or of the HUD: its baseline position and its already scaled font size.
void place(LabelNode& label, Point position, double fontSize) {
  label.position = position;
  label.setFontSize(fontSize);
}

}  // namespace

void GameScene::updateLayout() {
  const double w = size().width;
  const double h = size().height;
  // The second quotient wins unless the first is strictly smaller, which also covers NaN.
  const double byHeight = h / kDesignHeight;
  const double byWidth = w / kDesignWidth;
  const double s = byHeight < byWidth ? byHeight : byWidth;
  layoutScale = s;

  const double margin = 16 * s + 8;
  place(*scoreLabel, {margin, h - (32 * s + 8)}, 18 * s);
  place(*highScoreLabel, {margin, h - (52 * s + 12)}, 14 * s);
  place(*fullscreenButton, {w - margin, h - (28 * s + 8)}, 14 * s);
  place(*pauseButton, {w - margin, h - (56 * s + 8)}, 16 * s);

  dimBackground->path = Path::rect(Rect::make(-w / 2, -h / 2, w, h));
  dimBackground->position = {w / 2, h / 2};

  layoutMenu();
  layoutSettings();
  layoutGameOver();
}

void GameScene::layoutMenu() {
  const double s = layoutScale;
  const double cx = size().width / 2;
  const double y0 = size().height * kMenuAnchor;
  place(*titleLabel, {cx, y0}, 32 * s);
  place(*subtitleLabel, {cx, y0 - 28 * s}, 16 * s);
  place(*startButton, {cx, y0 - 80 * s}, 20 * s);
  place(*settingsButton, {cx, y0 - 116 * s}, 18 * s);
}

void GameScene::layoutSettings() {
  const double s = layoutScale;
  const double cx = size().width / 2;
  const double y0 = size().height * kSettingsAnchor;
  place(*settingsTitle, {cx, y0}, 26 * s);
  place(*toggleFPSLabel, {cx, y0 - 58 * s}, 18 * s);
  place(*musicToggleLabel, {cx, y0 - 92 * s}, 18 * s);
  place(*volumeLabel, {cx, y0 - 126 * s}, 18 * s);
  place(*volDownButton, {cx - kVolumeButtonOffset * s, y0 - 160 * s}, 22 * s);
  place(*volUpButton, {cx + kVolumeButtonOffset * s, y0 - 160 * s}, 22 * s);
  place(*settingsBackButton, {cx, y0 - 200 * s}, 18 * s);
}

// Lays out the game-over page and, below it in this function, the pause page.
void GameScene::layoutGameOver() {
  const double s = layoutScale;
  const double cx = size().width / 2;
  const double y0 = size().height * kGameOverAnchor;
  place(*goTitle, {cx, y0}, 28 * s);
  place(*goScore, {cx, y0 - 36 * s}, 18 * s);
  place(*goHigh, {cx, y0 - 60 * s}, 16 * s);
  place(*tauntLabel, {cx, y0 - 88 * s}, 16 * s);
  place(*retryButton, {cx, y0 - 122 * s}, 20 * s);
  place(*menuButton, {cx, y0 - 156 * s}, 18 * s);

  const double y1 = size().height * kPauseAnchor;
  place(*pauseTitle, {cx, y1}, 28 * s);
  place(*resumeButton, {cx, y1 - 44 * s}, 20 * s);
  // A missing or foreign restart button skips its row.
  if (LabelNodePtr restart = restartButton()) {
    place(*restart, {cx, y1 - 78 * s}, 18 * s);
  }
  place(*pauseMenuButton, {cx, y1 - 112 * s}, 18 * s);
}

}  // namespace zb
