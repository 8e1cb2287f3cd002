// A fixed amount of work for a profiler, where the benchmarks' own iteration counts vary from run
// to run. Instruction counts under callgrind are steady even on a busy machine:
//   valgrind --tool=callgrind --toggle-collect='zb::GameScene::update(double)' zb_profile_frames update 3000
//   valgrind --tool=callgrind --toggle-collect='zb::Renderer::draw(*' zb_profile_frames draw 100 800 600
//   valgrind --tool=callgrind --toggle-collect='zb::bench::PlainCairoFrame::draw(*' zb_profile_frames plain 100 800 600
#include <cairo.h>

#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "plain_cairo_frame.hpp"
#include "platform/renderer.hpp"
#include "scene_in_play.hpp"

namespace {

constexpr double kFramesPerSecond = 60;

int usage() {
  std::fputs("usage: zb_profile_frames update FRAMES | draw FRAMES WIDTH HEIGHT | plain FRAMES WIDTH HEIGHT\n",
             stderr);
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
  if ((mode == "draw" || mode == "plain") && argc == 5) {
    const int width = std::atoi(argv[3]);
    const int height = std::atoi(argv[4]);
    if (width <= 0 || height <= 0) return usage();
    zb::bench::SceneInPlay game({static_cast<double>(width), static_cast<double>(height)});
    drawFrames(game, frames, width, height, mode == "plain");
    return 0;
  }
  return usage();
}
