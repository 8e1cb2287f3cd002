// Construction of the scene: whichever constructor is used, the scene starts the same, so a scene
// restored from an archive starts exactly like a freshly made one.
#include "scene/game_scene.hpp"

namespace zb {

namespace {

const char* const kFontName = "Menlo";

LabelNodePtr emptyLabel() { return std::make_shared<LabelNode>(kFontName); }
ShapeNodePtr emptyShape() { return std::make_shared<ShapeNode>(); }
std::shared_ptr<Node> plainNode() { return std::make_shared<Node>(); }

constexpr double kHeadRadius = 10.0;

}  // namespace

GameScene::GameScene() : Scene() { initializeFields(); }

GameScene::GameScene(Size size) : Scene(size) { initializeFields(); }

GameScene::~GameScene() = default;

// The header gives every number its default; this builds the nodes and the tables.
void GameScene::initializeFields() {
  // The figure and the scenery.
  playerContainer = plainNode();
  playerHead = ShapeNode::withCircleOfRadius(kHeadRadius);
  playerBody = emptyShape();
  playerArmLeft = emptyShape();
  playerArmRight = emptyShape();
  playerLegLeft = emptyShape();
  playerLegRight = emptyShape();
  groundLine = emptyShape();
  backgroundGroup = plainNode();
  cloudGroup = plainNode();
  starGroup = plainNode();
  buildingGroup = plainNode();

  // The interface.
  scoreLabel = emptyLabel();
  highScoreLabel = emptyLabel();
  pauseButton = emptyLabel();
  uiLayer = plainNode();
  menuOverlay = plainNode();
  settingsOverlay = plainNode();
  gameOverOverlay = plainNode();
  pauseOverlay = plainNode();
  dimBackground = ShapeNode::withRect(Rect{});
  titleLabel = emptyLabel();
  subtitleLabel = emptyLabel();
  startButton = emptyLabel();
  settingsButton = emptyLabel();
  settingsTitle = emptyLabel();
  toggleFPSLabel = emptyLabel();
  musicToggleLabel = emptyLabel();
  volumeLabel = emptyLabel();
  volDownButton = emptyLabel();
  volUpButton = emptyLabel();
  settingsBackButton = emptyLabel();
  goTitle = emptyLabel();
  goScore = emptyLabel();
  goHigh = emptyLabel();
  retryButton = emptyLabel();
  menuButton = emptyLabel();
  tauntLabel = emptyLabel();
  taunts = {
      "Trip much?",
      "Obstacle 1 \u2013 You 0",
      "Ground says hi",
      "Nice faceplant",
      "That box bullied you",
      "You call that a jump?",
      "Try blinking less",
      "Gravity wins again",
      "Ouch. Again.",
      "The birds are laughing",
      "Press space. Redeem yourself.",
      "Dodging is a lifestyle",
      "Free hugs from obstacles",
      "Snack-sized score",
      "Teeny tiny champion",
      "Even the clouds booed",
      "High score? Maybe tomorrow",
      "Training wheels on?",
      "They didn\u2019t even try",
      "C\u2019mon. You got this.",
  };
  fullscreenButton = emptyLabel();
  pauseTitle = emptyLabel();
  resumeButton = emptyLabel();
  pauseMenuButton = emptyLabel();

  // Palettes and sound.
  babyLaughResourceNames = {"baby-laugh-1", "baby-laugh-2", "baby-laugh-3", "baby-laugh-4"};
  vibrantPalettes = {
      {Color::rgba(0.98, 0.97, 0.90, 1.0), Color::rgba(0.20, 0.18, 0.19, 1.0), Color::rgba(0.55, 0.52, 0.49, 1.0)},
      {Color::rgba(0.92, 0.98, 1.00, 1.0), Color::rgba(0.10, 0.20, 0.45, 1.0), Color::rgba(0.40, 0.60, 0.85, 1.0)},
      {Color::rgba(0.99, 0.95, 0.97, 1.0), Color::rgba(0.45, 0.05, 0.35, 1.0), Color::rgba(0.75, 0.35, 0.65, 1.0)},
      {Color::rgba(0.94, 0.99, 0.95, 1.0), Color::rgba(0.08, 0.45, 0.18, 1.0), Color::rgba(0.30, 0.70, 0.45, 1.0)},
  };
}

std::vector<ShapeNodePtr> GameScene::decorationsAt(double z) const {
  std::vector<ShapeNodePtr> found;
  for (const NodePtr& child : children()) {
    auto shape = std::dynamic_pointer_cast<ShapeNode>(child);
    if (shape && !dynamic_cast<const ObstacleNode*>(shape.get()) && shape->zPosition == z) found.push_back(shape);
  }
  return found;
}

const char* toString(GameScene::ObstacleType type) {
  using T = GameScene::ObstacleType;
  switch (type) {
    case T::boxSmall: return "boxSmall";
    case T::boxMedium: return "boxMedium";
    case T::boxLarge: return "boxLarge";
    case T::barrel: return "barrel";
    case T::planeHigh: return "planeHigh";
    case T::planeMedium: return "planeMedium";
  }
  return "unknown";
}

const char* toString(GameScene::GameState state) {
  using S = GameScene::GameState;
  switch (state) {
    case S::menu: return "menu";
    case S::playing: return "playing";
    case S::gameOver: return "gameOver";
    case S::settings: return "settings";
    case S::paused: return "paused";
  }
  return "unknown";
}

}  // namespace zb
