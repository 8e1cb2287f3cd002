#include "headless/dump_state.hpp"

#include <utility>

#include "headless/dump_json.hpp"
#include "headless/virtual_view.hpp"
#include "scene/game_scene.hpp"

namespace zb {
namespace {



// ---- Node helpers: every field may still be empty while the game is being built. ----------------


Point positionOf(const Node* node) { return node ? node->position : Point{}; }
bool isVisible(const Node* node) { return node && !node->isHiddenInTree(); }

// The end points of a one-segment stroke, in the coordinates of the node's parent.
std::pair<Point, Point> segmentOf(const ShapeNode* stroke) {
  if (!stroke) return {};
  std::optional<Point> from, to;
  for (const Path::Element& element : stroke->path.elements()) {
    if (element.kind == Path::Kind::moveTo && !from) from = element.point;
    if (element.kind == Path::Kind::lineTo && from && !to) to = element.point;
  }
  AffineTransform placement = stroke->transformToParent();
  return {placement.apply(from.value_or(Point{})), placement.apply(to.value_or(Point{}))};
}

double radiusOf(const ShapeNode& circle) {
  for (const Path::Element& element : circle.path.elements()) {
    if (element.kind == Path::Kind::arc) return element.radius;
  }
  auto box = circle.path.boundingBox();
  return box ? box->width() / 2 : 0;
}

Size sizeOf(const ShapeNode& shape) {
  auto box = shape.path.boundingBox();
  return box ? Size{box->width(), box->height()} : Size{};
}

const char* alignmentName(HorizontalAlignment alignment) {
  switch (alignment) {
    case HorizontalAlignment::left: return "left";
    case HorizontalAlignment::right: return "right";
    case HorizontalAlignment::center: break;
  }
  return "center";
}

template <typename Visit>
void forEachChild(const Node* parent, Visit visit) {
  if (!parent) return;
  for (const NodePtr& child : parent->children()) visit(*child);
}


// ---- One function per group of keys, in dump order. ---------------------------------------------

void writeClock(JsonWriter& json, const DumpInput& input) {
  json.field("frame", input.frame);
  json.field("time", input.scene.currentTime());
  json.field("size", input.scene.size());
}

void writeFlow(JsonWriter& json, const GameScene& scene) {
  json.field("gameState", toString(scene.gameState));
  json.field("scenePaused", scene.paused);
  json.field("isPausedManually", scene.isPausedManually);
  json.field("score", scene.score);
  json.field("highScore", scene.highScore);
}

void writeRig(JsonWriter& json, const GameScene& scene) {
  json.key("rig");
  json.beginObject();
  json.field("head", positionOf(scene.playerHead.get()));
  const std::pair<const char*, const ShapeNodePtr*> strokes[] = {
      {"body", &scene.playerBody},         {"armLeft", &scene.playerArmLeft}, {"armRight", &scene.playerArmRight},
      {"legLeft", &scene.playerLegLeft}, {"legRight", &scene.playerLegRight}};
  for (const auto& [name, stroke] : strokes) {
    auto [from, to] = segmentOf(stroke->get());
    json.key(name);
    json.segment(from, to);
  }
  json.endObject();
}

void writePlayer(JsonWriter& json, const GameScene& scene) {
  json.field("playerFootAltitude", scene.playerFootAltitude);
  json.field("playerVelocityY", scene.playerVelocityY);
  json.field("isDucking", scene.isDucking);
  json.field("framesSinceLeftGround", scene.framesSinceLeftGround);
  json.field("bufferedJumpFramesRemaining", scene.bufferedJumpFramesRemaining);
  json.field("runAnimationFrameIndex", scene.runAnimationFrameIndex);
  json.field("runAnimationFrameCounter", scene.runAnimationFrameCounter);
  json.field("playerPosition", positionOf(scene.playerContainer.get()));
  writeRig(json, scene);
}

void writeObstacle(JsonWriter& json, const GameScene::ObstacleNode& obstacle) {
  json.beginObject();
  json.field("type", toString(obstacle.obstacleType));
  json.field("position", obstacle.position);
  json.field("zRotation", obstacle.zRotation);
  json.field("frame", obstacle.frame());
  json.field("accumulatedFrame", obstacle.calculateAccumulatedFrame());
  json.field("strokeColor", obstacle.strokeColor);
  json.field("lineWidth", obstacle.lineWidth);
  json.endObject();
}

void writeObstacles(JsonWriter& json, const GameScene& scene) {
  json.field("obstacleSpeed", scene.obstacleSpeed);
  json.field("spawnTimerFrames", scene.spawnTimerFrames);
  json.field("spawnIntervalMin", scene.spawnIntervalMin);
  json.field("spawnIntervalMax", scene.spawnIntervalMax);
  json.key("obstacles");
  json.beginArray();
  for (const auto& obstacle : scene.obstacleNodes) {
    if (obstacle) writeObstacle(json, *obstacle);
  }
  json.endArray();
  json.key("pool");
  json.beginObject();
  for (const auto& [type, nodes] : scene.obstaclePool) json.field(toString(type), nodes.size());
  json.endObject();
  json.key("lastCollisionPoint");
  if (scene.lastCollisionPoint) {
    json.value(*scene.lastCollisionPoint);
  } else {
    json.null();
  }
}

void writePalette(JsonWriter& json, const GameScene& scene) {
  json.field("currentPaletteIndex", scene.currentPaletteIndex);
  json.field("lastPaletteChangeAtScore", scene.lastPaletteChangeAtScore);
  json.field("backgroundColor", scene.backgroundColor);
  json.field("currentPrimaryColor", scene.currentPrimaryColor);
  json.field("currentSecondaryColor", scene.currentSecondaryColor);
  json.field("layoutScale", scene.layoutScale);
}

void writeSettings(JsonWriter& json, const GameScene& scene) {
  json.field("settingShowFPS", scene.settingShowFPS);
  json.field("settingMusicEnabled", scene.settingMusicEnabled);
  json.field("settingMusicVolume", scene.settingMusicVolume);
}

void writeView(JsonWriter& json, VirtualView& view) {
  json.key("view");
  json.beginObject();
  json.field("showsFPS", view.showsFPS);
  json.field("showsNodeCount", view.showsNodeCount);
  json.field("fullscreen", view.virtualWindow().isFullScreen());
  json.field("cursorHidden", view.cursorHidden());
  json.endObject();
}

void writeMusic(JsonWriter& json, const GameScene& scene, VirtualView& view) {
  json.key("music");
  const AudioNode* music = scene.backgroundMusicNode.get();
  if (!music) {
    json.null();
    return;
  }
  auto loop = view.recorder().loop(*music);
  json.beginObject();
  json.field("volume", loop ? loop->volume : music->volume());
  json.field("playing", loop && loop->playing);
  json.endObject();
}

void writeSounds(JsonWriter& json, const std::vector<std::string>& sounds) {
  json.key("sounds");
  json.beginArray();
  for (const std::string& sound : sounds) json.value(sound);
  json.endArray();
}

void writeLabel(JsonWriter& json, const char* key, const LabelNode* label) {
  json.key(key);
  if (!label) {
    json.null();
    return;
  }
  json.beginObject();
  json.field("name", label->name);
  json.field("text", label->text());
  json.field("fontSize", label->fontSize());
  json.field("position", label->position);
  json.field("visible", isVisible(label));
  json.field("color", label->fontColor);
  json.field("alignment", alignmentName(label->horizontalAlignment));
  json.endObject();
}

void writeLabels(JsonWriter& json, const GameScene& scene) {
  static constexpr std::pair<const char*, LabelNodePtr GameScene::*> kLabelFields[] = {
      {"scoreLabel", &GameScene::scoreLabel},
      {"highScoreLabel", &GameScene::highScoreLabel},
      {"pauseButton", &GameScene::pauseButton},
      {"titleLabel", &GameScene::titleLabel},
      {"subtitleLabel", &GameScene::subtitleLabel},
      {"startButton", &GameScene::startButton},
      {"settingsButton", &GameScene::settingsButton},
      {"settingsTitle", &GameScene::settingsTitle},
      {"toggleFPSLabel", &GameScene::toggleFPSLabel},
      {"musicToggleLabel", &GameScene::musicToggleLabel},
      {"volumeLabel", &GameScene::volumeLabel},
      {"volDownButton", &GameScene::volDownButton},
      {"volUpButton", &GameScene::volUpButton},
      {"settingsBackButton", &GameScene::settingsBackButton},
      {"goTitle", &GameScene::goTitle},
      {"goScore", &GameScene::goScore},
      {"goHigh", &GameScene::goHigh},
      {"retryButton", &GameScene::retryButton},
      {"menuButton", &GameScene::menuButton},
      {"tauntLabel", &GameScene::tauntLabel},
      {"fullscreenButton", &GameScene::fullscreenButton},
      {"pauseTitle", &GameScene::pauseTitle},
      {"resumeButton", &GameScene::resumeButton},
      {"pauseMenuButton", &GameScene::pauseMenuButton},
  };
  json.key("labels");
  json.beginObject();
  for (const auto& [key, field] : kLabelFields) writeLabel(json, key, (scene.*field).get());
  writeLabel(json, "restartButton", scene.restartButton().get());
  json.endObject();
}

void writeVisibility(JsonWriter& json, const char* key, const Node* node) {
  json.key(key);
  json.beginObject();
  json.field("visible", isVisible(node));
  json.endObject();
}

void writeNodes(JsonWriter& json, const GameScene& scene) {
  json.key("nodes");
  json.beginObject();
  json.key("dimBackground");
  json.beginObject();
  const ShapeNode* dim = scene.dimBackground.get();
  json.field("visible", isVisible(dim));
  json.field("frame", dim ? dim->frame() : Rect{});
  json.field("fillColor", dim ? dim->fillColor : Color::clear());
  json.endObject();
  writeVisibility(json, "menuOverlay", scene.menuOverlay.get());
  writeVisibility(json, "settingsOverlay", scene.settingsOverlay.get());
  writeVisibility(json, "gameOverOverlay", scene.gameOverOverlay.get());
  writeVisibility(json, "pauseOverlay", scene.pauseOverlay.get());
  json.key("uiLayer");
  json.beginObject();
  json.field("position", positionOf(scene.uiLayer.get()));
  json.endObject();
  json.endObject();
}

void writeBuildings(JsonWriter& json, const GameScene& scene) {
  json.key("buildings");
  json.beginArray();
  forEachChild(scene.buildingGroup.get(), [&](const Node& node) {
    auto* building = dynamic_cast<const ShapeNode*>(&node);
    json.beginObject();
    json.field("position", node.position);
    json.field("size", building ? sizeOf(*building) : Size{});
    json.field("fillColor", building ? building->fillColor : Color::clear());
    json.field("alpha", node.alpha);
    json.endObject();
  });
  json.endArray();
}

void writeCloud(JsonWriter& json, const Node& cloud) {
  auto* shape = dynamic_cast<const ShapeNode*>(&cloud);
  json.beginObject();
  json.field("position", cloud.position);
  json.field("fillColor", shape ? shape->fillColor : Color::clear());
  json.field("alpha", cloud.alpha);
  json.key("puffs");
  json.beginArray();
  forEachChild(&cloud, [&](const Node& node) {
    auto* puff = dynamic_cast<const ShapeNode*>(&node);
    json.beginObject();
    json.field("position", node.position);
    json.field("radius", puff ? radiusOf(*puff) : 0.0);
    json.field("fillColor", puff ? puff->fillColor : Color::clear());
    json.endObject();
  });
  json.endArray();
  json.endObject();
}

void writeScenery(JsonWriter& json, const GameScene& scene) {
  writeBuildings(json, scene);
  json.key("clouds");
  json.beginArray();
  forEachChild(scene.cloudGroup.get(), [&](const Node& cloud) { writeCloud(json, cloud); });
  json.endArray();
  json.field("starCount", scene.starGroup ? scene.starGroup->children().size() : size_t{0});

  json.key("groundLine");
  json.beginObject();
  const ShapeNode* ground = scene.groundLine.get();
  auto [from, to] = segmentOf(ground);
  json.field("from", from);
  json.field("to", to);
  json.field("strokeColor", ground ? ground->strokeColor : Color::clear());
  json.field("lineWidth", ground ? ground->lineWidth : 0.0);
  json.endObject();
}

void writeDecorations(JsonWriter& json, const GameScene& scene) {
  json.key("birds");
  json.beginArray();
  for (const ShapeNodePtr& bird : scene.birds()) {
    json.beginObject();
    json.field("position", bird->position);
    json.field("xScale", bird->xScale);
    json.field("zRotation", bird->zRotation);
    json.field("strokeColor", bird->strokeColor);
    json.endObject();
  }
  json.endArray();
  json.key("explosionDots");
  json.beginArray();
  for (const ShapeNodePtr& dot : scene.explosionDots()) {
    json.beginObject();
    json.field("position", dot->position);
    json.field("alpha", dot->alpha);
    json.field("fillColor", dot->fillColor);
    json.endObject();
  }
  json.endArray();
}

void writePreferenceValue(JsonWriter& json, const PreferenceValue& value) {
  std::visit([&](const auto& stored) { json.value(stored); }, value);
}

void writePreferences(JsonWriter& json, Preferences& preferences) {
  json.key("preferences");
  json.beginObject();
  for (const auto& [key, value] : preferences.dictionaryRepresentation()) {
    json.key(key);
    writePreferenceValue(json, value);
  }
  json.endObject();
}

}  // namespace

// Gamepads, the options of the preferences file that the game is using now, and the button the keys
// and the pad would press.
static void writeComfortState(JsonWriter& json, const DumpInput& input) {
  json.field("gamepads", input.view.gamepads().count());
  json.field("reducedMotion", input.scene.comfortOptions().reducedMotion);
  json.field("gameSpeed", input.scene.comfortOptions().gameSpeed);
  json.key("focusedButton");
  if (auto focused = input.scene.focusedButtonName()) {
    json.value(*focused);
  } else {
    json.null();
  }
}

void writeDump(std::ostream& out, const DumpInput& input) {
  const GameScene& scene = input.scene;
  JsonWriter json(out);
  json.beginObject();
  writeClock(json, input);
  writeFlow(json, scene);
  writePlayer(json, scene);
  writeObstacles(json, scene);
  writePalette(json, scene);
  writeSettings(json, scene);
  writeView(json, input.view);
  writeMusic(json, scene, input.view);
  writeSounds(json, input.sounds);
  writeLabels(json, scene);
  writeNodes(json, scene);
  writeScenery(json, scene);
  writeDecorations(json, scene);
  json.field("nodeCount", scene.nodeCount());
  writePreferences(json, input.preferences);
  writeComfortState(json, input);
  json.endObject();
  out << '\n';
}

}  // namespace zb
