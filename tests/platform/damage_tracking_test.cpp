// Drawing only what changed must give, on every frame, exactly the pixels of a full redraw.
#include <gtest/gtest.h>
#include <cairo.h>

#include <cstring>
#include <functional>
#include <map>
#include <sstream>

#include "headless/headless_session.hpp"
#include "platform/damage_region.hpp"
#include "platform/renderer.hpp"

namespace zb::test {
namespace {

// One cairo image, kept from frame to frame like the window's pixels.
struct Canvas {
  cairo_surface_t* surface = nullptr;
  PixelSize size;
  ~Canvas() { release(); }
  void release() {
    if (surface != nullptr) cairo_surface_destroy(surface);
    surface = nullptr;
  }
  // True when the old pixels are still there.
  bool fit(PixelSize wanted) {
    if (surface != nullptr && wanted.width == size.width && wanted.height == size.height) return true;
    release();
    surface = cairo_image_surface_create(CAIRO_FORMAT_RGB24, wanted.width, wanted.height);
    size = wanted;
    return false;
  }
  const unsigned char* row(int y) {
    cairo_surface_flush(surface);
    return cairo_image_surface_get_data(surface) + static_cast<std::ptrdiff_t>(y) * cairo_image_surface_get_stride(surface);
  }
};

int64_t differingPixels(Canvas& a, Canvas& b) {
  int64_t count = 0;
  for (int y = 0; y < a.size.height; ++y) {
    const auto* ra = reinterpret_cast<const uint32_t*>(a.row(y));
    const auto* rb = reinterpret_cast<const uint32_t*>(b.row(y));
    for (int x = 0; x < a.size.width; ++x) count += (ra[x] & 0xffffff) != (rb[x] & 0xffffff);
  }
  return count;
}

struct TrackedRun {
  std::ostringstream out;
  HeadlessSession session{HeadlessOptions{Size{480, 270}, 11, {}, {}, ""}, out};
  Renderer tracked;
  Renderer full;
  Canvas incremental;
  Canvas reference;
  double pixelScale = 1;
  int64_t framesWithDiff = 0;
  int64_t partialFrames = 0;
  int64_t drawnPixels = 0;
  int64_t framePixels = 0;

  void drawAndCompare(uint64_t frame) {
    const Size size = session.view().size();
    const PixelSize pixels{static_cast<int>(size.width * pixelScale), static_cast<int>(size.height * pixelScale)};
    const bool kept = incremental.fit(pixels);
    reference.fit(pixels);
    cairo_t* cr = cairo_create(incremental.surface);
    const auto& damage = tracked.drawChanges(cr, pixels, session.view(), pixelScale, 60, kept);
    cairo_destroy(cr);
    cr = cairo_create(reference.surface);
    full.draw(cr, session.view(), pixelScale, 60);
    cairo_destroy(cr);
    const int64_t differing = differingPixels(incremental, reference);
    if (differing != 0 && ++framesWithDiff <= 5) ADD_FAILURE() << "frame " << frame << ": " << differing << " pixels differ";
    for (const PixelRect& r : damage) drawnPixels += r.area();
    framePixels += int64_t{pixels.width} * pixels.height;
    partialFrames += damage.size() != 1 || damage.front().area() < int64_t{pixels.width} * pixels.height;
  }
};

TEST(DamageTracking, EveryFrameOfALongRunMatchesAFullRedraw) {
  TrackedRun run;
  run.session.run(LaunchCommand{});
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
      {1900, [&] { scene.toggleShowFPS(); }},
      {1930, [&] { scene.showMenu(); }},
      {1960, [&] { run.pixelScale = 1; }},
  };
  constexpr uint64_t kFrames = 4000;
  int crashes = 0, departures = 0;  // runs ending (the shake, the dots) and birds or dots leaving
  int paletteChanges = 0;
  for (uint64_t frame = 0; frame < kFrames; ++frame) {
    if (const auto event = events.find(frame); event != events.end()) event->second();
    const bool wasOver = scene.gameState == GameScene::GameState::gameOver;
    const std::size_t children = scene.children().size();
    const int64_t palette = scene.currentPaletteIndex;
    // Now and then the player looks away, so that runs end in a crash.
    const bool handsOff = (frame >= 2200 && frame < 2600) || (frame >= 3000 && frame < 3400);
    if (handsOff) {
      run.session.run(StepCommand{1});
    } else {
      run.session.run(AutoplayCommand{1});
    }
    crashes += !wasOver && scene.gameState == GameScene::GameState::gameOver;
    departures += scene.children().size() < children;
    paletteChanges += scene.currentPaletteIndex != palette;
    run.drawAndCompare(frame);
  }
  EXPECT_EQ(run.framesWithDiff, 0);
  EXPECT_GE(crashes, 2) << "the run must see the shake";
  EXPECT_GE(departures, 3) << "the run must see birds and dots leave";
  EXPECT_GE(paletteChanges, 2);
  // Most frames redraw only part of the picture, and far less than all of it overall.
  EXPECT_GT(run.partialFrames, int64_t{kFrames} * 3 / 4);
  EXPECT_LT(run.drawnPixels, run.framePixels / 3);
}

TEST(DamageTracking, AStillFrameRedrawsNothingAndTrackingOffRedrawsEverything) {
  TrackedRun run;
  run.session.run(LaunchCommand{});
  run.session.scene()->pauseGame();
  for (uint64_t frame = 0; frame < 3; ++frame) run.drawAndCompare(frame);
  cairo_t* cr = cairo_create(run.incremental.surface);
  EXPECT_TRUE(run.tracked.drawChanges(cr, run.incremental.size, run.session.view(), 1, 60, true).empty());
  run.tracked.setTracksDamage(false);
  const auto& all = run.tracked.drawChanges(cr, run.incremental.size, run.session.view(), 1, 60, true);
  ASSERT_EQ(all.size(), 1u);
  EXPECT_EQ(all.front(), (PixelRect{0, 0, 480, 270}));
  cairo_destroy(cr);
}

TEST(DamageRegion, ChangedItemsDamageBothPlacesAndReorderingDamagesTheOvertaken) {
  const DrawRecord a{1, {0, 0, 10, 10}, {}}, b{2, {5, 5, 10, 10}, {}}, c{3, {100, 100, 4, 4}, {}};
  const DrawRecord aMoved{4, {50, 0, 10, 10}, {}};
  struct Case {
    const char* what;
    std::vector<DrawRecord> before, after;
    std::vector<PixelRect> damage;
  };
  const Case cases[] = {
      {"unchanged", {a, b, c}, {a, b, c}, {}},
      {"moved", {a, b, c}, {aMoved, b, c}, {aMoved.box, a.box}},
      {"removed", {a, b, c}, {a, c}, {b.box}},
      {"added", {a, c}, {a, b, c}, {b.box}},
      {"swapped", {a, b, c}, {b, a, c}, {a.box}},
  };
  for (const Case& each : cases) EXPECT_EQ(damageBetween(each.before, each.after), each.damage) << each.what;
}

}  // namespace
}  // namespace zb::test
