#include "engine/action.hpp"

#include <gtest/gtest.h>

#include <numbers>
#include <string>
#include <vector>

#include "engine/audio_node.hpp"
#include "engine/scene.hpp"
#include "engine/shape_node.hpp"
#include "engine/view.hpp"

namespace zb {
namespace {

constexpr double kFrame = 1.0 / 60.0;

struct Stage {
  std::shared_ptr<Scene> scene = std::make_shared<Scene>(Size{800, 400});
  NodePtr node = std::make_shared<Node>();
  Stage() { scene->addChild(node); }
  void frames(int n) {
    for (int i = 0; i < n; ++i) scene->stepFrame(kFrame);
  }
};

TEST(ActionTimingTest, MoveOverPointFourFiveSecondsEndsExactlyOnTarget) {
  Stage stage;
  stage.node->position = {10, 20};
  int completions = 0;
  stage.node->runAction(actions::moveBy(120, -30, 0.45), [&] { ++completions; });
  stage.frames(1);
  EXPECT_NEAR(stage.node->position.x, 10 + 120.0 / 27, 1e-9);
  stage.frames(26);
  EXPECT_EQ(stage.node->position, (Point{130, -10}));
  EXPECT_EQ(completions, 1);
  EXPECT_FALSE(stage.node->hasActions());
  stage.frames(10);
  EXPECT_EQ(completions, 1);
}

TEST(ActionTimingTest, FadeRotateAndMoveToXInterpolateLinearly) {
  Stage stage;
  stage.node->alpha = 0.8;
  stage.node->position.x = 100;
  stage.node->runAction(actions::fadeOut(0.2));
  stage.node->runAction(actions::rotateBy(std::numbers::pi, 0.1));
  stage.node->runAction(actions::moveToX(-100, 0.1));
  stage.frames(3);
  EXPECT_NEAR(stage.node->alpha, 0.8 * 0.75, 1e-9);
  EXPECT_NEAR(stage.node->zRotation, std::numbers::pi / 2, 1e-9);
  EXPECT_NEAR(stage.node->position.x, 0, 1e-9);
  stage.frames(9);
  EXPECT_EQ(stage.node->alpha, 0);
  EXPECT_EQ(stage.node->zRotation, std::numbers::pi);
  EXPECT_EQ(stage.node->position.x, -100);
}

TEST(ActionTimingTest, SequenceCarriesLeftoverTimeIntoTheNextPart) {
  Stage stage;
  // The first move ends 1/3 of a frame into the second frame; the rest goes to the second move.
  stage.node->runAction(actions::sequence({actions::moveBy(30, 0, 0.025), actions::moveBy(0, 60, 0.05)}));
  stage.frames(2);
  EXPECT_EQ(stage.node->position.x, 30);
  EXPECT_NEAR(stage.node->position.y, 60 * (2 * kFrame - 0.025) / 0.05, 1e-9);
  stage.frames(3);
  EXPECT_EQ(stage.node->position, (Point{30, 60}));
  EXPECT_FALSE(stage.node->hasActions());
}

TEST(ActionTimingTest, ShakeReturnsExactlyToWhereItBegan) {
  for (Point start : {Point{0, 0}, Point{400.3, 77.7}, Point{-12.25, 3}}) {
    Stage stage;
    stage.node->position = start;
    stage.node->runAction(actions::sequence(
        {actions::moveBy(6, 0, 0.02), actions::moveBy(-12, 0, 0.04), actions::moveBy(6, 0, 0.02)}));
    stage.frames(6);
    EXPECT_EQ(stage.node->position, start);
    EXPECT_FALSE(stage.node->hasActions());
  }
}

TEST(ActionTimingTest, ConcurrentMovesAddUp) {
  Stage stage;
  stage.node->runAction(actions::moveBy(60, 0, 0.5));
  stage.frames(6);
  stage.node->runAction(actions::moveBy(0, 30, 0.25));
  stage.node->runAction(actions::moveBy(-20, 0, 0.25));
  stage.frames(15);
  EXPECT_NEAR(stage.node->position.x, 60 * 0.7 - 20, 1e-9);
  EXPECT_NEAR(stage.node->position.y, 30, 1e-9);
  stage.frames(9);
  EXPECT_NEAR(stage.node->position.x, 40, 1e-9);
}

TEST(ActionTimingTest, RepeatForeverKeepsGoing) {
  Stage stage;
  stage.node->runAction(actions::repeatForever(
      actions::sequence({actions::rotateBy(0.22, 0.15), actions::rotateBy(-0.22, 0.15)})));
  stage.frames(9);
  EXPECT_NEAR(stage.node->zRotation, 0.22, 1e-9);
  stage.frames(18 * 100 + 9);
  EXPECT_NEAR(stage.node->zRotation, 0, 1e-9);
  EXPECT_TRUE(stage.node->hasActions());
}

TEST(ActionTimingTest, InstantActionsTakeEffectAtTheNextStep) {
  Stage stage;
  stage.node->runAction(actions::removeFromParent());
  EXPECT_EQ(stage.node->parent(), stage.scene.get());
  stage.frames(1);
  EXPECT_EQ(stage.node->parent(), nullptr);
}

TEST(ActionTreeTest, CompletionsMayChangeTheTree) {
  Stage stage;
  std::vector<std::string> log;
  // A dot that flies, fades and removes itself, and a bird whose completion removes it.
  auto dot = ShapeNode::withCircleOfRadius(2);
  auto bird = std::make_shared<Node>();
  stage.scene->addChild(dot);
  stage.scene->addChild(bird);
  dot->runAction(actions::sequence({actions::moveBy(120, 0, 0.45), actions::fadeOut(0.2), actions::removeFromParent()}),
                 [&] { log.push_back("dot"); });
  std::weak_ptr<Node> weakBird = bird;
  bird->runAction(actions::moveToX(-50, 0.1), [&log, raw = bird.get()] {
    log.push_back("bird");
    raw->removeFromParent();
  });
  bird->runAction(actions::rotateBy(1, 10));
  bird.reset();
  dot.reset();
  stage.frames(6);
  EXPECT_TRUE(weakBird.expired());
  stage.frames(40);
  EXPECT_EQ(log, (std::vector<std::string>{"bird", "dot"}));
  EXPECT_EQ(stage.scene->nodeCount(), 2u);
}

TEST(ActionPauseTest, PausedSceneAdvancesOnlyVolumeChanges) {
  View view({800, 400});
  auto scene = std::make_shared<Scene>();
  view.presentScene(scene);
  auto music = std::make_shared<AudioNode>("music.mp3");
  auto dot = std::make_shared<Node>();
  scene->addChild(music);
  scene->addChild(dot);
  music->runAction(actions::changeVolumeTo(0, 0));
  view.stepFrame();
  EXPECT_EQ(music->volume(), 0);

  scene->paused = true;
  dot->runAction(actions::moveBy(10, 0, 0.1));
  music->runAction(actions::changeVolumeTo(0.6f, 0.1));
  for (int i = 0; i < 6; ++i) view.stepFrame();
  EXPECT_FLOAT_EQ(music->volume(), 0.6f);
  EXPECT_EQ(dot->position.x, 0);
  scene->paused = false;
  for (int i = 0; i < 6; ++i) view.stepFrame();
  EXPECT_EQ(dot->position.x, 10);
}

TEST(ActionTreeTest, ActionsStopWhileTheNodeIsOutOfTheScene) {
  Stage stage;
  stage.node->runAction(actions::moveBy(60, 0, 1));
  stage.frames(6);
  stage.node->removeFromParent();
  stage.frames(30);
  EXPECT_NEAR(stage.node->position.x, 6, 1e-9);
  auto detached = std::make_shared<Node>();
  detached->runAction(actions::moveBy(60, 0, 1));
  stage.frames(6);
  EXPECT_EQ(detached->position.x, 0);
  // Back in a scene, both carry on.
  stage.scene->addChild(stage.node);
  stage.scene->addChild(detached);
  stage.frames(6);
  EXPECT_NEAR(stage.node->position.x, 12, 1e-9);
  EXPECT_NEAR(detached->position.x, 6, 1e-9);
}

// Records what the nodes ask of the sound output.
class RecordingOutput final : public SoundOutput {
 public:
  std::vector<std::string> calls;
  bool playEffect(const std::filesystem::path& file) override {
    calls.push_back("effect " + file.string());
    return true;
  }
  void startLoop(const AudioNode& node) override { calls.push_back("start " + node.file().string()); }
  void setLoopVolume(const AudioNode&, float volume) override {
    calls.push_back("volume " + std::to_string(static_cast<int>(volume * 100)));
  }
  void stopLoop(const AudioNode&) override { calls.push_back("stop"); }
};

class RecordingView final : public View {
 public:
  using View::View;
  RecordingOutput output;
  SoundOutput& soundOutput() override { return output; }
};

TEST(AudioNodeTest, LoopsWhileInAPresentedSceneAndPlaysEffects) {
  RecordingView view({800, 400});
  auto scene = std::make_shared<Scene>();
  view.presentScene(scene);
  EXPECT_EQ(scene->size(), (Size{800, 400}));
  auto music = std::make_shared<AudioNode>("music.mp3");
  scene->addChild(music);
  EXPECT_TRUE(music->isPlaying());
  music->runAction(actions::changeVolumeTo(0.5f, 0));
  scene->runAction(actions::playSoundFile("jump.mp3"));
  view.stepFrame();
  music->removeFromParent();
  EXPECT_FALSE(music->isPlaying());
  EXPECT_EQ(view.output.calls,
            (std::vector<std::string>{"start music.mp3", "effect jump.mp3", "volume 50", "stop"}));
}

}  // namespace
}  // namespace zb
