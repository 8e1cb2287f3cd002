// A fixed amount of work for a profiler, where the benchmarks' own iteration counts vary from run
// to run. Instruction counts under callgrind are steady even on a busy machine:
//   valgrind --tool=callgrind --toggle-collect='zb::GameScene::update(double)' zb_profile_frames update 3000
//   valgrind --tool=callgrind --toggle-collect='zb::Renderer::draw(*' zb_profile_frames draw 100 800 600
//   valgrind --tool=callgrind --toggle-collect='zb::bench::PlainCairoFrame::draw(*' zb_profile_frames plain 100 800 600
// `play` steps and draws as the window does (only the changes, over the kept frame) and prints how
// often the renderer found its masks kept, and what they took:
//   perf stat -e instructions:u zb_profile_frames play 1800 1920 1080
#include <cairo.h>

#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "plain_cairo_frame.hpp"
#include "render/renderer.hpp"
#include "scene_in_play.hpp"

namespace {

constexpr double kFramesPerSecond = 60;

int usage() {
  std::fputs("usage: zb_profile_frames update FRAMES | draw|plain|play FRAMES WIDTH HEIGHT\n", stderr);
  return 2;
}

// Steps frames of a run in play, the built-in player at the keys.
void stepFrames(zb::bench::SceneInPlay& game, long frames) {
  for (long i = 0; i < frames; ++i) {
    game.prepareFrame();
    game.view().stepFrame();
  }
}

// Draws the same frame again and again, as the render benchmark does, through the renderer or
// through the plain-cairo baseline.
void drawFrames(zb::bench::SceneInPlay& game, long frames, int width, int height, bool plain) {
  cairo_surface_t* image = cairo_image_surface_create(CAIRO_FORMAT_RGB24, width, height);
  zb::Renderer renderer;
  const zb::bench::PlainCairoFrame baseline(game.scene(), game.view().size());
  for (long i = 0; i < frames; ++i) {
    cairo_t* cr = cairo_create(image);
    if (plain) {
      baseline.draw(cr);
    } else {
      renderer.draw(cr, game.view(), 1.0, kFramesPerSecond);
    }
    cairo_destroy(cr);
  }
  cairo_surface_destroy(image);
}

// A run as the window plays it: a step, then the frame's changes drawn over the previous frame.
void playFrames(zb::bench::SceneInPlay& game, long frames, int width, int height) {
  cairo_surface_t* image = cairo_image_surface_create(CAIRO_FORMAT_RGB24, width, height);
  zb::Renderer renderer;
  double redrawn = 0;
  for (long i = 0; i < frames; ++i) {
    game.prepareFrame();
    game.view().stepFrame();
    cairo_t* cr = cairo_create(image);
    for (const zb::PixelRect& box : renderer.drawChanges(cr, {width, height}, game.view(), 1.0, kFramesPerSecond, i > 0)) {
      redrawn += static_cast<double>(box.area()) / (static_cast<double>(width) * height);
    }
    cairo_destroy(cr);
  }
  cairo_surface_destroy(image);
  const zb::StampCache& stamps = renderer.masks();
  const double lookups = static_cast<double>(stamps.hits() + stamps.misses());
  std::printf("masks found %.1f %% of %.0f lookups; %.0f drawn a frame; %.2f MB kept; %.1f %% of the pixels redrawn a frame\n",
              lookups > 0 ? 100.0 * static_cast<double>(stamps.hits()) / lookups : 0.0, lookups,
              static_cast<double>(stamps.misses()) / static_cast<double>(frames),
              static_cast<double>(stamps.bytes()) / (1 << 20), 100 * redrawn / static_cast<double>(frames));
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 3) return usage();
  const std::string_view mode = argv[1];
  const long frames = std::strtol(argv[2], nullptr, 10);
  if (mode == "update" && argc == 3) {
    zb::bench::SceneInPlay game({800, 600});
    stepFrames(game, frames);
    return 0;
  }
  if ((mode == "draw" || mode == "plain" || mode == "play") && argc == 5) {
    const int width = std::atoi(argv[3]);
    const int height = std::atoi(argv[4]);
    if (width <= 0 || height <= 0) return usage();
    zb::bench::SceneInPlay game({static_cast<double>(width), static_cast<double>(height)});
    if (mode == "play") {
      playFrames(game, frames, width, height);
    } else {
      drawFrames(game, frames, width, height, mode == "plain");
    }
    return 0;
  }
  return usage();
}
