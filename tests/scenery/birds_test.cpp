#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "engine/random.hpp"
#include "scene/scene_fixture.hpp"

namespace zb {
namespace {

using test::AttachedScene;
using State = GameScene::GameState;

constexpr double kBirdZ = 20;

std::vector<ShapeNode*> birdsIn(const GameScene& scene) {
  std::vector<ShapeNode*> birds;
  for (const NodePtr& child : scene.children()) {
    if (child->zPosition == kBirdZ) birds.push_back(dynamic_cast<ShapeNode*>(child.get()));
  }
  return birds;
}

// The first seed whose first draw lets a bird out, and what the rest of the bird's draws will be.
struct BirdDraws {
  uint64_t seed;
  double height;
  bool fromLeft;
  double flightSeconds;
};
BirdDraws firstBirdSeed(bool wantLeft) {
  for (uint64_t seed = 0;; ++seed) {
    Random r(seed);
    if (r.uniformInt(0, 480) != 0) continue;
    const double height = r.uniformDouble(60, 108);
    const bool fromLeft = r.uniformBool();
    if (fromLeft != wantLeft) continue;
    return {seed, height, fromLeft, r.uniformDouble(3.5, 6.0)};
  }
}

TEST(Birds, NoneOutsidePlayAndNoDrawsTaken) {
  AttachedScene s;
  for (State state : {State::menu, State::settings, State::gameOver, State::paused}) {
    s->gameState = state;
    s->random().seed(5);
    for (int i = 0; i < 5000; ++i) s->maybeSpawnBird();
    EXPECT_TRUE(birdsIn(*s).empty()) << toString(state);
    Random untouched(5);
    EXPECT_EQ(s->random().nextU64(), untouched.nextU64()) << toString(state);
  }
  s->gameState = State::menu;
  s.step(3000);
  EXPECT_TRUE(birdsIn(*s).empty());
}

TEST(Birds, AboutOneInFourHundredEightyOneFramesOfPlay) {
  AttachedScene s;
  s->gameState = State::playing;
  constexpr int kExpected = 300;
  for (int i = 0; i < 481 * kExpected; ++i) s->maybeSpawnBird();  // no frames: nothing flies away
  const auto birds = birdsIn(*s);
  // Four standard deviations of the binomial count either side.
  EXPECT_NEAR(static_cast<double>(birds.size()), kExpected, 4 * std::sqrt(kExpected));
  for (const ShapeNode* bird : birds) {
    EXPECT_GE(bird->position.y, 110);
    EXPECT_LE(bird->position.y, 158);
    EXPECT_EQ(bird->lineWidth, 2);
    EXPECT_EQ(bird->strokeColor, s->currentPrimaryColor);
    EXPECT_EQ(bird->fillColor, Color::clear());
    const bool fromRight = bird->position.x > 400;
    EXPECT_EQ(bird->position.x, fromRight ? 820 : -20);
    EXPECT_EQ(bird->xScale, fromRight ? -1 : 1);
  }
}

void expectFlight(bool fromLeft) {
  const BirdDraws draws = firstBirdSeed(fromLeft);
  AttachedScene s;
  s->gameState = State::playing;
  s->random().seed(draws.seed);
  s->maybeSpawnBird();
  auto birds = birdsIn(*s);
  ASSERT_EQ(birds.size(), 1u);
  std::shared_ptr<Node> bird = birds[0]->shared_from_this();
  const double startX = fromLeft ? -20 : 820;
  const double targetX = fromLeft ? 840 : -40;
  EXPECT_EQ(bird->position, (Point{startX, 50 + draws.height}));
  EXPECT_EQ(bird->xScale, fromLeft ? 1 : -1);

  // The run ends but the bird flies on.
  s->gameState = State::menu;
  const int framesToHalf = static_cast<int>(draws.flightSeconds * 30);
  double lowestTilt = 1, highestTilt = -1;
  for (int i = 0; i < framesToHalf; ++i) {
    s.step();
    lowestTilt = std::min(lowestTilt, bird->zRotation);
    highestTilt = std::max(highestTilt, bird->zRotation);
  }
  const double progress = framesToHalf / 60.0 / draws.flightSeconds;
  EXPECT_NEAR(bird->position.x, startX + (targetX - startX) * progress, 1e-6);
  EXPECT_EQ(bird->position.y, 50 + draws.height);
  // The rock tilts one way only.
  EXPECT_GE(lowestTilt, -1e-9);
  EXPECT_LE(highestTilt, 0.22 + 1e-9);
  EXPECT_GT(highestTilt, 0.2);

  s.step(static_cast<int>(std::ceil(draws.flightSeconds * 60)) - framesToHalf - 1);
  EXPECT_EQ(bird->parent(), s.scene.get()) << "still flying just before the end";
  s.step(2);
  EXPECT_EQ(bird->parent(), nullptr);
  EXPECT_TRUE(birdsIn(*s).empty());
}

TEST(Birds, FromTheLeftFliesToTheRightEdgeAndLeaves) { expectFlight(true); }

TEST(Birds, FromTheRightIsMirroredAndFliesToTheLeftEdge) { expectFlight(false); }

}  // namespace
}  // namespace zb
