// Drawing only what changed must give, on every frame, exactly the pixels of a full redraw.
#include <gtest/gtest.h>
#include <cairo.h>

#include <algorithm>
#include <functional>
#include <map>
#include <memory>
#include <random>
#include <sstream>

#include "headless/headless_session.hpp"
#include "engine/scene.hpp"
#include "engine/shape_node.hpp"
#include "render/renderer.hpp"

namespace zb::test {
namespace {

using Surface = std::unique_ptr<cairo_surface_t, decltype(&cairo_surface_destroy)>;

Surface image(PixelSize size) {
  return {cairo_image_surface_create(CAIRO_FORMAT_RGB24, size.width, size.height), cairo_surface_destroy};
}

// Pixels that differ between two images of one size, ignoring the unused fourth byte.
int64_t differingPixels(cairo_surface_t* a, cairo_surface_t* b) {
  cairo_surface_flush(a);
  cairo_surface_flush(b);
  const auto* pa = reinterpret_cast<const uint32_t*>(cairo_image_surface_get_data(a));
  const auto* pb = reinterpret_cast<const uint32_t*>(cairo_image_surface_get_data(b));
  const int64_t size = int64_t{cairo_image_surface_get_stride(a)} / 4 * cairo_image_surface_get_height(a);
  int64_t count = 0;
  for (int64_t i = 0; i < size; ++i) count += (pa[i] & 0xffffff) != (pb[i] & 0xffffff);
  return count;
}

// Each frame drawn from its changes over the kept previous one, as in the window, and whole; the
// renderer's own verification must count the same differing pixels.
struct TrackedDrawing {
  Renderer tracked, full;
  Surface kept{nullptr, cairo_surface_destroy};
  int64_t framesWithDiff = 0, worstDiff = 0;
  uint32_t bottomLeft = 0;  // a pixel of plain background in the last picture

  TrackedDrawing() { tracked.setVerifies(true); }

  // Returns the share of the picture that was redrawn.
  double drawAndCompare(const View& view, double pixelScale, uint64_t frame, double stepFraction = 1) {
    const Size size = view.size();
    const PixelSize pixels{static_cast<int>(size.width * pixelScale), static_cast<int>(size.height * pixelScale)};
    const bool stillThere = kept && cairo_image_surface_get_width(kept.get()) == pixels.width &&
                            cairo_image_surface_get_height(kept.get()) == pixels.height;
    if (!stillThere) kept = image(pixels);
    const Surface reference = image(pixels);
    cairo_t* cr = cairo_create(kept.get());
    const auto& damage = tracked.drawChanges(cr, pixels, view, pixelScale, 60, stillThere, stepFraction);
    cairo_destroy(cr);
    cr = cairo_create(reference.get());
    full.draw(cr, view, pixelScale, 60, stepFraction);
    cairo_destroy(cr);
    cairo_surface_flush(reference.get());
    const unsigned char* lastRow = cairo_image_surface_get_data(reference.get()) +
                                   int64_t{cairo_image_surface_get_stride(reference.get())} * (pixels.height - 1);
    bottomLeft = *reinterpret_cast<const uint32_t*>(lastRow) & 0xffffff;
    const int64_t differing = differingPixels(kept.get(), reference.get());
    EXPECT_EQ(tracked.mismatchedPixels(), differing) << "frame " << frame << ": verification";
    worstDiff = std::max(worstDiff, differing);
    if (differing != 0 && ++framesWithDiff <= 5) ADD_FAILURE() << "frame " << frame << ": " << differing << " differ";
    int64_t drawn = 0;
    for (const PixelRect& r : damage) drawn += r.area();
    return static_cast<double>(drawn) / (int64_t{pixels.width} * pixels.height);
  }
};

// A seeded headless game, drawn at its current pixel scale.
struct TrackedRun : TrackedDrawing {
  std::ostringstream out;
  HeadlessSession session{HeadlessOptions{Size{480, 270}, 11, {}, {}, ""}, out};
  double pixelScale = 1;
  double drawAndCompare(uint64_t frame, double stepFraction = 1) {
    return TrackedDrawing::drawAndCompare(session.view(), pixelScale, frame, stepFraction);
  }
};

TEST(DamageTracking, EveryFrameOfALongRunMatchesAFullRedrawAndAStillFrameRedrawsNothing) {
  TrackedRun run;
  run.session.run(LaunchCommand{});
  for (uint64_t frame = 0; frame < 3; ++frame) run.drawAndCompare(frame);
  EXPECT_EQ(run.drawAndCompare(3), 0) << "a still frame redraws nothing";
  GameScene& scene = *run.session.scene();
  scene.paletteChangePoints = 15;  // many palette changes in a short run
  // Things a player does at a given frame, beyond what the built-in player does on its own.
  const std::map<uint64_t, std::function<void()>> events = {
      {400, [&] { run.session.run(ResizeCommand{Size{640, 300}}); }},
      {700, [&] { scene.pauseGame(); }},
      {760, [&] { scene.resumeGame(); }},
      {1500, [&] { run.session.run(ResizeCommand{Size{480, 270}}); }},
      {1800, [&] { scene.openSettings(); }},
      {1830, [&] { scene.toggleShowFPS(); }},
      {1870, [&] { run.pixelScale = 2; }},  // moved to a dense display
      {1930, [&] { scene.showMenu(); }},
      {1960, [&] { run.pixelScale = 1; }},
  };
  // Runs ending (the shake, the dots), birds or dots leaving, and palette changes.
  int crashes = 0, departures = 0, paletteChanges = 0;
  double redrawn = 0;
  for (uint64_t frame = 0; frame < 4000; ++frame) {
    if (const auto event = events.find(frame); event != events.end()) event->second();
    const bool wasOver = scene.gameState == GameScene::GameState::gameOver;
    const std::size_t children = scene.children().size();
    const int64_t palette = scene.currentPaletteIndex;
    // Now and then the player looks away, so that runs end in a crash.
    const bool handsOff = (frame >= 2200 && frame < 2600) || (frame >= 3000 && frame < 3400);
    run.session.run(handsOff ? ScriptCommand{StepCommand{1}} : ScriptCommand{AutoplayCommand{1}});
    crashes += !wasOver && scene.gameState == GameScene::GameState::gameOver;
    departures += scene.children().size() < children;
    const bool newPalette = scene.currentPaletteIndex != palette;
    paletteChanges += newPalette;
    const uint32_t oldBackground = run.bottomLeft;
    // On the step, and between steps as a faster display or a slower game shows them.
    constexpr double kFractions[] = {1, 0.3, 0.75};
    redrawn += run.drawAndCompare(frame, newPalette ? 0.5 : kFractions[frame % 3]);
    if (newPalette) {
      EXPECT_NE(run.bottomLeft, oldBackground) << "a new palette shows at once, between steps too";
    }
  }
  EXPECT_EQ(run.framesWithDiff, 0);
  EXPECT_GE(crashes, 2) << "the run must see the shake";
  EXPECT_GE(departures, 3) << "the run must see birds and dots leave";
  EXPECT_GE(paletteChanges, 2);
  EXPECT_LT(redrawn, 4000 / 3) << "far less than the whole picture is redrawn";
  run.tracked.setTracksDamage(false);
  EXPECT_EQ(run.drawAndCompare(4000), 1) << "with tracking off everything is redrawn";
}

// A rectangle, circle or line up to three times the frame's size, filled and/or outlined, near the frame.
std::shared_ptr<ShapeNode> randomShape(std::mt19937& random, Size frame) {
  std::uniform_real_distribution<double> unit(0, 1);
  const double extent = std::max(frame.width, frame.height) * 3 * unit(random) + 1;
  std::shared_ptr<ShapeNode> shape;
  switch (random() % 3) {
    case 0: shape = ShapeNode::withRectOfSize({extent, extent * unit(random) + 1}); break;
    case 1: shape = ShapeNode::withCircleOfRadius(extent / 2); break;
    default: shape = ShapeNode::withPath(Path::line({-extent / 2, 0}, {extent / 2, extent * (unit(random) - 0.5)}));
  }
  const auto color = [&] { return Color::rgba(unit(random), unit(random), unit(random), 0.3 + 0.7 * unit(random)); };
  shape->fillColor = random() % 3 == 0 ? Color::clear() : color();
  shape->strokeColor = random() % 3 == 0 ? Color::clear() : color();
  shape->lineWidth = 4 * unit(random);
  shape->position = {frame.width * (2 * unit(random) - 0.5), frame.height * (2 * unit(random) - 0.5)};
  shape->zRotation = random() % 2 == 0 ? 0 : 6.3 * unit(random);
  return shape;
}

// Items crossing frames 1 to 100 points wide, moving by whole and fractional pixels, turning and fading.
TEST(DamageTracking, RandomItemsCrossingSmallFramesMatchAFullRedrawOnEveryFrame) {
  std::mt19937 random(20);
  std::uniform_real_distribution<double> unit(0, 1);
  int64_t framesWithDiff = 0, worstDiff = 0;
  for (int trial = 0; trial < 60; ++trial) {
    const Size frame{1.0 + random() % 100, 1.0 + random() % 100};
    View view(frame);
    auto scene = std::make_shared<Scene>();
    view.presentScene(scene);
    for (int i = 0, count = 1 + static_cast<int>(random() % 5); i < count; ++i) scene->addChild(randomShape(random, frame));
    TrackedDrawing drawing;
    for (uint64_t step = 0; step < 50; ++step) {
      for (const NodePtr& node : scene->children()) {
        switch (random() % 6) {
          case 0: node->position.x += static_cast<int>(random() % 7) - 3.0; break;  // whole pixels
          case 1: node->position.y += static_cast<int>(random() % 7) - 3.0; break;
          case 2: node->position.x += 4 * unit(random) - 2; node->position.y += 4 * unit(random) - 2; break;
          case 3: node->zRotation += unit(random) - 0.5; break;
          case 4: node->alpha = unit(random); break;
          default: break;  // still
        }
      }
      drawing.drawAndCompare(view, 1, step);
    }
    framesWithDiff += drawing.framesWithDiff;
    worstDiff = std::max(worstDiff, drawing.worstDiff);
  }
  EXPECT_EQ(framesWithDiff, 0) << "at worst " << worstDiff << " pixels differ";
}

}  // namespace
}  // namespace zb::test
