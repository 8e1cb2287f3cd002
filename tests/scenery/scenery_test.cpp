// The scenery around a run: skyline and clouds, birds, palettes, and how each is drawn between steps.
#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <set>
#include <vector>

#include "player/autoplay.hpp"

#include "scene/scene_fixture.hpp"

namespace zb {
namespace {

using test::AttachedScene;
using State = GameScene::GameState;

std::vector<Point> positions(const Node& group) {
  std::vector<Point> result;
  for (const NodePtr& child : group.children()) result.push_back(child->position);
  return result;
}

// Wrapping goes by the window's width at the time; on the game-over page the skyline keeps the run's pace.
TEST(Background, WrapsPastTheWindowsEdgeAndDriftsOffTheRunAtTheLastSpeed) {
  AttachedScene s;
  Node& building = *s->buildingGroup->children()[0];
  Node& cloud = *s->cloudGroup->children()[0];
  const std::vector<Point> before = positions(*s->buildingGroup);
  s.view->setSize({1200, 600});
  EXPECT_EQ(positions(*s->buildingGroup), before) << "a resize moves nothing";
  building.position.x = -79.9;
  cloud.position.x = -39.5;
  s->updateBackground();
  EXPECT_EQ(building.position.x, 1200 + 80);
  EXPECT_EQ(cloud.position.x, 1200 + 40);

  s->showGameOver();
  const auto drift = [&] {
    cloud.position.x = 400;
    s.step();
    return 400 - cloud.position.x;
  };
  const double atStart = drift();
  s->obstacleSpeed = 2 * kStartObstacleSpeed;  // as left behind by a long run
  EXPECT_DOUBLE_EQ(drift(), 2 * atStart);
  s->obstacleSpeed = 0;
  const std::vector<Point> clouds = positions(*s->cloudGroup), buildings = positions(*s->buildingGroup);
  s.step(120);
  EXPECT_EQ(positions(*s->cloudGroup), clouds);
  EXPECT_EQ(positions(*s->buildingGroup), buildings);
}

TEST(Birds, FlyOnlyInPlayEnteringMirroredFromEitherEdgeAndAreGoneOnceAcross) {
  AttachedScene s;
  for (State state : {State::menu, State::settings, State::gameOver, State::paused}) {
    s->gameState = state;
    for (int i = 0; i < 5000; ++i) s->maybeSpawnBird();
    EXPECT_TRUE(s->birds().empty()) << toString(state);
  }
  s->gameState = State::playing;
  for (int i = 0; i < 100000; ++i) s->maybeSpawnBird();  // no frames: nothing flies away
  const auto birds = s->birds();
  std::set<bool> sides;
  for (const ShapeNodePtr& bird : birds) {
    const bool fromRight = bird->position.x > 400;
    EXPECT_TRUE(bird->position.x < 0 || bird->position.x > 800) << "enters off the screen";
    EXPECT_EQ(bird->xScale, fromRight ? -1 : 1) << "a bird from the right is mirrored";
    sides.insert(fromRight);
  }
  EXPECT_EQ(sides.size(), 2u);
  EXPECT_LT(birds.size(), 1000u) << "a few birds, not a flock";
  s->gameState = State::menu;  // no new ones
  s.step(60);
  EXPECT_EQ(s->birds().size(), birds.size()) << "no bird crosses in a second";
  s.step(6 * 60);
  EXPECT_TRUE(s->birds().empty()) << "every bird is gone after the longest flight";
}

// Walks the score up one point per check, as a run does, until it reaches `target`.
void scoreUpTo(GameScene& scene, int64_t target) {
  while (scene.score < target) {
    ++scene.score;
    scene.updatePaletteIfNeeded();
  }
}

// The palette's background, and its primary and secondary on the parts that take them.
void expectPalette(const GameScene& s, int64_t index) {
  const GameScene::Palette& palette = s.vibrantPalettes.at(static_cast<size_t>(index));
  EXPECT_EQ(s.currentPaletteIndex, index);
  EXPECT_EQ(s.backgroundColor, palette.bg);
  for (Color c : {s.playerLegRight->strokeColor, s.groundLine->strokeColor, s.scoreLabel->fontColor}) {
    EXPECT_EQ(c, palette.primary);
  }
  EXPECT_EQ(s.highScoreLabel->fontColor, palette.secondary);
}

TEST(Palettes, StepAtEachChangeCycleRoundAndTheMenuAfterAGameOverStepsOnce) {
  AttachedScene s;
  const auto palettes = static_cast<int64_t>(s->vibrantPalettes.size());
  for (const auto& [score, index] : {std::pair{kPaletteChangePoints - 1, int64_t{0}}, {kPaletteChangePoints, 1},
                                     {palettes * kPaletteChangePoints, 0}}) {
    scoreUpTo(*s, score);
    expectPalette(*s, index);
  }

  for (bool retry : {false, true}) {  // game over at 800, then the menu steps once more, a retry does not
    SCOPED_TRACE(retry ? "retry" : "menu");
    AttachedScene over;
    over->startGame();
    scoreUpTo(*over, 800);
    over->showGameOver();
    over.step();
    expectPalette(*over, 2);
    retry ? over->startGame() : over->showMenu();
    over.step(10);
    expectPalette(*over, retry ? 2 : 3);
  }
}

void forEachNode(const Node& node, const std::function<void(const Node&)>& f) {
  for (const NodePtr& child : node.children()) {
    f(*child);
    forEachNode(*child, f);
  }
}

// What a step moved is drawn part way along; what jumped (pooled, wrapped, shown, resized) where it is.
TEST(BetweenSteps, ARunSlidesWhatMovesAndDrawsWhatJumpsWhereItIs) {
  AttachedScene s;
  Autoplayer player;
  s->startGame();
  std::set<const Node*> seen;
  int slid = 0, reused = 0, wrapped = 0, strides = 0;
  for (int i = 0; i < 6000 && (reused == 0 || wrapped == 0) && s->gameState == State::playing; ++i) {
    std::map<const Node*, double> before;
    for (const auto& o : s->obstacleNodes) before[o.get()] = o->position.x;
    for (const NodePtr& b : s->buildingGroup->children()) before[b.get()] = b->position.x;
    for (const KeyStroke& stroke : player.play(*s)) stroke.down ? s.press(stroke.keyCode) : s.release(stroke.keyCode);
    s.step();
    // Half way along its step, or where it is if it jumped: new from the pool, or wrapped round.
    const auto drawnJumped = [&](const Node& n) {
      const auto was = before.find(&n);
      const bool jumped = was == before.end() || n.position.x > was->second;
      if (jumped) {
        EXPECT_EQ(n.placementBetweenSteps(0.5), n.placement());
      } else {
        EXPECT_DOUBLE_EQ(n.placementBetweenSteps(0.5).position.x, (was->second + n.position.x) / 2);
      }
      return jumped;
    };
    for (const auto& o : s->obstacleNodes) {
      if (!drawnJumped(*o)) ++slid;
      else if (!seen.insert(o.get()).second) ++reused;
    }
    for (const NodePtr& b : s->buildingGroup->children()) wrapped += drawnJumped(*b);
    strides += s->playerLegLeft->pathBetweenSteps(0.5).has_value();
  }
  EXPECT_GT(slid, 100);
  EXPECT_GT(reused, 0);
  EXPECT_GT(wrapped, 0);
  EXPECT_GT(strides, 0) << "the figure's strokes swing between poses";

  s.runUntilCrash();
  ASSERT_EQ(s->gameState, State::gameOver);
  forEachNode(*s->gameOverOverlay, [](const Node& n) { EXPECT_EQ(n.placementBetweenSteps(0.5), n.placement()); });
  const std::vector<ShapeNodePtr> dots = s->explosionDots();
  ASSERT_FALSE(dots.empty());
  EXPECT_EQ(dots[0]->placementBetweenSteps(0.5), dots[0]->placement()) << "the burst starts at the crash";
  const Point burstStart = dots[0]->position, shakeStart = s->uiLayer->position;
  s.step();
  EXPECT_NEAR(dots[0]->placementBetweenSteps(0.5).position.x, (burstStart.x + dots[0]->position.x) / 2, 1e-9);
  EXPECT_NEAR(s->uiLayer->placementBetweenSteps(0.5).position.x, (shakeStart.x + s->uiLayer->position.x) / 2, 1e-9);
  EXPECT_NE(s->uiLayer->position, shakeStart) << "the interface shakes";

  std::map<const Node*, NodePlacement> placed;
  forEachNode(*s, [&](const Node& n) { placed[&n] = n.placement(); });
  s.view->setSize({1000, 500});
  int relaidOut = 0;
  forEachNode(*s, [&](const Node& n) {
    if (placed[&n] == n.placement()) return;
    ++relaidOut;
    EXPECT_EQ(n.placementBetweenSteps(0.5), n.placement()) << "a resize lays out at once";
  });
  EXPECT_GT(relaidOut, 0);
}

}  // namespace
}  // namespace zb
