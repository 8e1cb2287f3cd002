// Places every interface node for the current scene size. One factor, layoutScale, scales every
// font size and margin; each page is a centred column hanging below an anchor height.
#include <initializer_list>
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

// A row of a page, in design points at scale 1: its offset from the column's anchor and its font size.
struct Row {
  LabelNode* label;
  double dx;
  double dy;  // below the anchor
  double fontSize;
};

// A row on the anchor stays exactly there, whatever the scale (even a degenerate one).
double shifted(double base, double by, double s) { return by == 0 ? base : base + by * s; }

// A page's rows, centred on `cx` and hanging below the anchor height, scaled by `s`.
void placeColumn(double cx, double anchor, double s, std::initializer_list<Row> rows) {
  for (const Row& row : rows) {
    if (row.label) place(*row.label, {shifted(cx, row.dx, s), shifted(anchor, -row.dy, s)}, row.fontSize * s);
  }
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
  placeFocusMark();
}

void GameScene::layoutMenu() {
  const double s = layoutScale;
  const double cx = size().width / 2;
  const double y0 = size().height * kMenuAnchor;
  placeColumn(cx, y0, s, {{titleLabel.get(), 0, 0, 32},
                          {subtitleLabel.get(), 0, 28, 16},
                          {startButton.get(), 0, 80, 20},
                          {settingsButton.get(), 0, 116, 18}});
}

void GameScene::layoutSettings() {
  const double s = layoutScale;
  const double cx = size().width / 2;
  const double y0 = size().height * kSettingsAnchor;
  placeColumn(cx, y0, s, {{settingsTitle.get(), 0, 0, 26},
                          {toggleFPSLabel.get(), 0, 58, 18},
                          {musicToggleLabel.get(), 0, 92, 18},
                          {volumeLabel.get(), 0, 126, 18},
                          {volDownButton.get(), -kVolumeButtonOffset, 160, 22},
                          {volUpButton.get(), kVolumeButtonOffset, 160, 22},
                          {settingsBackButton.get(), 0, 200, 18}});
}

// Lays out the game-over page and, below it in this function, the pause page.
void GameScene::layoutGameOver() {
  const double s = layoutScale;
  const double cx = size().width / 2;
  const double y0 = size().height * kGameOverAnchor;
  placeColumn(cx, y0, s, {{goTitle.get(), 0, 0, 28},
                          {goScore.get(), 0, 36, 18},
                          {goHigh.get(), 0, 60, 16},
                          {tauntLabel.get(), 0, 88, 16},
                          {retryButton.get(), 0, 122, 20},
                          {menuButton.get(), 0, 156, 18}});

  const double y1 = size().height * kPauseAnchor;
  // A missing or foreign restart button skips its row.
  const LabelNodePtr restart = restartButton();
  placeColumn(cx, y1, s, {{pauseTitle.get(), 0, 0, 28},
                          {resumeButton.get(), 0, 44, 20},
                          {restart.get(), 0, 78, 18},
                          {pauseMenuButton.get(), 0, 112, 18}});
}

}  // namespace zb
