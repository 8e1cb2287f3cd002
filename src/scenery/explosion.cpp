// A ring of dots bursts out of the point of impact, flies outwards, fades and removes itself.
// The dots hang straight under the scene so the interface shake and the pages leave them alone.
#include <cmath>
#include <numbers>

#include "engine/action.hpp"
#include "scene/game_scene.hpp"

namespace zb {
namespace {

constexpr int kDotCount = 18;
constexpr double kDotRadius = 2;
constexpr double kDotZ = 50;
constexpr double kTravelDistance = 120;
constexpr double kTravelSeconds = 0.45;
constexpr double kFadeSeconds = 0.2;

}  // namespace

void GameScene::spawnExplosionEffect() {
  const Point origin = lastCollisionPoint.value_or(playerContainer->position);
  for (int i = 0; i < kDotCount; ++i) {
    ShapeNodePtr dot = ShapeNode::withCircleOfRadius(kDotRadius);
    dot->fillColor = currentPrimaryColor;
    dot->strokeColor = Color::clear();
    dot->position = origin;
    dot->zPosition = kDotZ;
    addChild(dot);

    // First dot straight to the right, then counter-clockwise.
    const double angle = static_cast<double>(i) / kDotCount * std::numbers::pi * 2;
    dot->runAction(actions::sequence({
        actions::moveBy(kTravelDistance * std::cos(angle), kTravelDistance * std::sin(angle), kTravelSeconds),
        actions::fadeOut(kFadeSeconds),
        actions::removeFromParent(),
    }));
  }
}

std::vector<ShapeNodePtr> GameScene::explosionDots() const { return decorationsAt(kDotZ); }

}  // namespace zb
