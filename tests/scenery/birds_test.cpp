// Birds: only during a run, about one in 481 frames, entering at either edge, gone after their flight.
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "scene/scene_fixture.hpp"

namespace zb {
namespace {

using test::AttachedScene;
using State = GameScene::GameState;

TEST(Birds, OnlyInPlayAboutOneInFourHundredEightyOneFramesEnteringAtEitherEdge) {
  AttachedScene s;
  for (State state : {State::menu, State::settings, State::gameOver, State::paused}) {
    s->gameState = state;
    for (int i = 0; i < 5000; ++i) s->maybeSpawnBird();
    EXPECT_TRUE(s->birds().empty()) << toString(state);
  }
  s->gameState = State::playing;
  constexpr int kExpected = 300;
  for (int i = 0; i < 481 * kExpected; ++i) s->maybeSpawnBird();  // no frames: nothing flies away
  const auto birds = s->birds();
  // Four standard deviations of the binomial count either side.
  EXPECT_NEAR(static_cast<double>(birds.size()), kExpected, 4 * std::sqrt(kExpected));
  for (const ShapeNodePtr& bird : birds) {
    EXPECT_TRUE(bird->position.y >= 110 && bird->position.y <= 158) << bird->position.y;
    const bool fromRight = bird->position.x > 400;
    EXPECT_EQ(bird->position.x, fromRight ? 820 : -20);
    EXPECT_EQ(bird->xScale, fromRight ? -1 : 1) << "a bird from the right is mirrored";
  }
}

TEST(Birds, LeaveTheSceneOnceAcrossAndNotBefore) {
  AttachedScene s;
  s->gameState = State::playing;
  for (int i = 0; i < 100000 && s->birds().size() < 20; ++i) s->maybeSpawnBird();
  ASSERT_EQ(s->birds().size(), 20u);
  s->gameState = State::menu;  // no new ones
  s.step(60);
  EXPECT_EQ(s->birds().size(), 20u) << "no bird crosses in a second";
  s.step(6 * 60);
  EXPECT_TRUE(s->birds().empty()) << "every bird is gone after the longest flight";
  EXPECT_GT(s->nodeCount(), 0u);
}

}  // namespace
}  // namespace zb
