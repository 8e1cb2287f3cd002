// Now and then during a run a small bird crosses the sky, rocking as it flies. Birds are
// decoration only: nothing tests them for collisions and nothing keeps them once they are started.
#include <memory>

#include "engine/action.hpp"
#include "engine/path.hpp"
#include "scene/game_scene.hpp"

namespace zb {
namespace {

constexpr int64_t kBirdChanceOutOf = 481;  // one new bird per this many frames of play, on average
constexpr double kBirdLineWidth = 2;
constexpr double kBirdZ = 20;
constexpr double kBirdMinHeight = 60;  // above the ground line
constexpr double kBirdMaxHeight = 108;
constexpr double kBirdStartMargin = 20;  // starts this far outside the scene
constexpr double kBirdEndMargin = 40;    // and flies until this far outside the other side
constexpr double kBirdMinFlightSeconds = 3.5;
constexpr double kBirdMaxFlightSeconds = 6.0;
// The rock goes up and back to level, never below it: a one-sided tilt is the intended look.
constexpr double kBirdRockAngle = 0.22;
constexpr double kBirdRockSeconds = 0.15;

ShapeNodePtr birdShape(Color color) {
  ShapeNodePtr bird = ShapeNode::withPath(Path::polyline({{-6, 0}, {0, 3}, {6, 0}}));
  bird->lineWidth = kBirdLineWidth;
  bird->strokeColor = color;
  bird->fillColor = Color::clear();
  bird->zPosition = kBirdZ;
  return bird;
}

}  // namespace

std::vector<ShapeNodePtr> GameScene::birds() const { return decorationsAt(kBirdZ); }

void GameScene::maybeSpawnBird() {
  if (gameState != GameState::playing) return;
  if (random().uniformInt(0, kBirdChanceOutOf - 1) != 0) return;

  ShapeNodePtr bird = birdShape(currentPrimaryColor);
  const double y = groundHeightFromBottom + random().uniformDouble(kBirdMinHeight, kBirdMaxHeight);
  const bool fromLeft = random().uniformBool();
  const double width = size().width;
  if (fromLeft) {
    bird->position = {-kBirdStartMargin, y};
  } else {
    bird->position = {width + kBirdStartMargin, y};
    bird->xScale = -1;
  }
  addChild(bird);

  const double flightSeconds = random().uniformDouble(kBirdMinFlightSeconds, kBirdMaxFlightSeconds);
  const double targetX = fromLeft ? width + kBirdEndMargin : -kBirdEndMargin;
  bird->runAction(actions::repeatForever(actions::sequence({
      actions::rotateBy(kBirdRockAngle, kBirdRockSeconds),
      actions::rotateBy(-kBirdRockAngle, kBirdRockSeconds),
  })));
  // A weak reference: the completion lives inside the bird's own action list.
  std::weak_ptr<ShapeNode> weakBird = bird;
  bird->runAction(actions::moveToX(targetX, flightSeconds), [weakBird] {
    if (ShapeNodePtr landed = weakBird.lock()) landed->removeFromParent();
  });
}

}  // namespace zb
