// What the game shows against committed pictures (ZB_UPDATE_SCREENSHOTS=1 rewrites tests/e2e/reference/;
// look at each before committing), and the window in a virtual display against the headless picture.
#include <cairo.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <memory>
#include <regex>

#include "e2e/child_process.hpp"
#include "headless/headless_test_support.hpp"

namespace zb::test {
namespace {

namespace fs = std::filesystem;

const fs::path kReferences = fs::path(ZB_SOURCE_DIR) / "tests" / "e2e" / "reference";
// Another font library may smooth text edges a little differently; a wrong digit or a missing bird
// is a dozen pixels in one 16 x 16 tile.
constexpr int kChannelTolerance = 8;
constexpr int kTile = 16;
constexpr int kMaxWrongPerTile = 4;

using Surface = std::unique_ptr<cairo_surface_t, decltype(&cairo_surface_destroy)>;

Surface readPNG(const fs::path& file) {
  return {cairo_image_surface_create_from_png(file.c_str()), &cairo_surface_destroy};
}

struct TileDifference {
  int wrong = 0;  // pixels off by more than the tolerance in the worst tile; everything for another size
  int x = 0;      // that tile's top-left corner
  int y = 0;
};

TileDifference worstTile(cairo_surface_t* a, cairo_surface_t* b, int tolerance = kChannelTolerance) {
  const int width = cairo_image_surface_get_width(a), height = cairo_image_surface_get_height(a);
  if (cairo_surface_status(a) != CAIRO_STATUS_SUCCESS || cairo_surface_status(b) != CAIRO_STATUS_SUCCESS ||
      width != cairo_image_surface_get_width(b) || height != cairo_image_surface_get_height(b)) {
    return {std::max(width * height, 1), 0, 0};
  }
  cairo_surface_flush(a);
  cairo_surface_flush(b);
  const auto pixel = [](cairo_surface_t* s, int x, int y) {
    const unsigned char* row = cairo_image_surface_get_data(s) + y * cairo_image_surface_get_stride(s);
    return reinterpret_cast<const uint32_t*>(row)[x];
  };
  std::vector<int> wrong(static_cast<size_t>((width / kTile + 1) * (height / kTile + 1)), 0);
  TileDifference worst;
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      const uint32_t pa = pixel(a, x, y), pb = pixel(b, x, y);
      bool close = true;
      for (int shift : {0, 8, 16}) {
        close = close && std::abs(int((pa >> shift) & 0xFF) - int((pb >> shift) & 0xFF)) <= tolerance;
      }
      if (close) continue;
      int& count = wrong[static_cast<size_t>((y / kTile) * (width / kTile + 1) + x / kTile)];
      if (++count > worst.wrong) worst = {count, x / kTile * kTile, y / kTile * kTile};
    }
  }
  return worst;
}

TEST(Screenshots, PagesRunsObstaclesAndPalettesLookAsCommitted) {
  struct Shot {
    const char* name;
    const char* reach;  // script lines from the previous picture to this one
    const char* state;
    int palette;
  };
  // Seed 1 with the built-in player: the frames were chosen from its dumps.
  const Shot shots[] = {
      {"menu", "step 20\n", "menu", 0},
      {"settings", "click 400 250\nstep 2\n", "settings", 0},
      {"run-boxes", "click 400 213\nkey down space\nautoplay 250\n", "playing", 0},
      {"paused", "key down p\nstep 2\n", "paused", 0},
      {"run-barrel", "key down p\nautoplay 270\n", "playing", 1},
      {"run-palette-2", "autoplay 320\n", "playing", 2},
      {"run-plane-medium", "autoplay 510\n", "playing", 3},
      {"run-plane-high", "autoplay 340\n", "playing", 0},
      // Left alone, the player runs into a box at a score of 1864, in palette 1.
      {"explosion", "step 180\n", "gameOver", 1},
      {"game-over", "step 220\n", "gameOver", 1},
  };
  const bool update = std::getenv("ZB_UPDATE_SCREENSHOTS") != nullptr;
  TempFolder folder("zb-screenshots");
  std::string script;
  for (const Shot& shot : shots) {
    script += std::string(shot.reach) + "screenshot " + (folder.path() / shot.name).string() + ".png\ndump\n";
  }
  BinaryRun run = runBinary({ZB_BINARY, "--headless", "--seed", "1", "--fallback", "none"}, script);
  ASSERT_EQ(run.status, 0) << run.err;
  const std::vector<Json> dumps = HeadlessRun{run.status, run.out, run.err}.dumps();
  ASSERT_EQ(dumps.size(), std::size(shots));

  for (size_t i = 0; i < std::size(shots); ++i) {
    const Shot& shot = shots[i];
    SCOPED_TRACE(shot.name);
    // If play changed, choose new frames.
    EXPECT_EQ(dumps[i]["gameState"].get<std::string>(), shot.state);
    EXPECT_EQ(dumps[i]["currentPaletteIndex"].get<double>(), shot.palette);
    const fs::path actual = folder.path() / (std::string(shot.name) + ".png");
    const fs::path reference = kReferences / (std::string(shot.name) + ".png");
    if (update) {
      fs::copy_file(actual, reference, fs::copy_options::overwrite_existing);
      continue;
    }
    const TileDifference difference = worstTile(readPNG(reference).get(), readPNG(actual).get());
    if (difference.wrong > kMaxWrongPerTile) {
      const fs::path kept = fs::path(testing::TempDir()) / ("zb-screenshot-" + std::string(shot.name) + ".png");
      fs::copy_file(actual, kept, fs::copy_options::overwrite_existing);
      ADD_FAILURE() << difference.wrong << " pixels differ in the tile at " << difference.x << "," << difference.y
                    << " of " << reference << "; the picture drawn is " << kept;
    }
  }
}

// The comparison itself must notice one small element gone wrong: a stray bird in the sky.
TEST(Screenshots, TheComparisonCatchesOneStrayBird) {
  const Surface reference = readPNG(kReferences / "run-boxes.png"), copy = readPNG(kReferences / "run-boxes.png");
  EXPECT_EQ(worstTile(reference.get(), copy.get()).wrong, 0);
  cairo_t* cr = cairo_create(copy.get());
  cairo_set_line_width(cr, 2);
  for (const auto& [x, y] : {std::pair{500, 200}, {506, 197}, {512, 200}}) cairo_line_to(cr, x, y);
  cairo_stroke(cr);  // in black
  cairo_destroy(cr);
  EXPECT_GT(worstTile(reference.get(), copy.get()).wrong, kMaxWrongPerTile);
}

// `screenshot FILE at F`: at 0 the last step itself, in between a picture between the last two steps.
TEST(Screenshots, AtAFractionOfAStepTheRunIsDrawnBetweenItsLastTwoSteps) {
  TempFolder folder("zb-screenshot-between");
  const auto shot = [&](const char* name) { return (folder.path() / name).string(); };
  const std::string script = "autoplay 299\nscreenshot " + shot("before.png") + "\nautoplay 1\nscreenshot " +
                             shot("last.png") + "\nscreenshot " + shot("zero.png") + " at 0\nscreenshot " +
                             shot("half.png") + " at 0.5\nscreenshot " + shot("almost.png") + " at 0.999\ndump\n";
  const BinaryRun run = runBinary({ZB_BINARY, "--headless", "--seed", "9", "--size", "800x600"}, script);
  ASSERT_EQ(run.status, 0) << run.err;
  const std::vector<Json> dumps = HeadlessRun{run.status, run.out, run.err}.dumps();
  ASSERT_EQ(dumps.at(0)["gameState"].get<std::string>(), "playing");
  const Surface before = readPNG(shot("before.png")), last = readPNG(shot("last.png"));
  EXPECT_EQ(worstTile(readPNG(shot("zero.png")).get(), last.get(), 0).wrong, 0);
  const Surface half = readPNG(shot("half.png"));
  EXPECT_GT(worstTile(half.get(), last.get(), 0).wrong, kMaxWrongPerTile);
  EXPECT_GT(worstTile(half.get(), before.get(), 0).wrong, kMaxWrongPerTile);
  EXPECT_LE(worstTile(readPNG(shot("almost.png")).get(), last.get()).wrong, kMaxWrongPerTile);
}

// The way of presenting asked for; with no graphics card behind the virtual display, no choice means
// the framebuffer.
class WindowPixels : public testing::TestWithParam<const char*> {};

TEST_P(WindowPixels, WindowAfterAutoplayEqualsTheHeadlessPicture) {
  ZB_REQUIRE_PROGRAMS("xvfb-run");
  const std::string chosen = GetParam(), used = chosen.empty() ? "framebuffer" : chosen;
  TempFolder folder("zb-window-pixels-" + used);
  const std::string window = folder.path() / "window.png", headless = folder.path() / "headless.png";
  // The virtual display's GL driver leaks where no suppression can name it; without sound the game
  // plays on without a word.
  const BinaryRun run = runBinary({"/usr/bin/env", "ASAN_OPTIONS=detect_leaks=0", "SDL_AUDIODRIVER=nonexistent",
                                   "ZINDLEBOP_REPORT_FRAMES=1", "ZINDLEBOP_REPORT_PRESENT=1",
                                   "ZINDLEBOP_PRESENT=" + chosen, "xvfb-run", "-a", "-s",
                                   "-screen 0 1024x768x24", "/bin/sh", "-c", kGameStatusShown, ZB_BINARY, "--autoplay",
                                   "--frames", "300", "--seed", "9", "--size", "800x600", "--prefs",
                                   folder.path() / "prefs.ini", "--screenshot", window});
  ASSERT_NE(run.err.find("game status: 0\n"), std::string::npos) << run.err;
  EXPECT_EQ(run.err.find("zindlebop:"), std::string::npos) << run.err;
  std::smatch present, steps;
  ASSERT_TRUE(std::regex_search(run.err, present, std::regex("present: (\\w+)"))) << run.err;
  EXPECT_EQ(present[1], used);
  ASSERT_TRUE(std::regex_search(run.err, steps, std::regex("frames: \\d+ drawn, (\\d+) steps"))) << run.err;
  ASSERT_GE(std::stol(steps[1]), 300);

  const std::string script = "autoplay " + std::string(steps[1]) + "\nscreenshot " + headless + "\n";
  ASSERT_EQ(runBinary({ZB_BINARY, "--headless", "--seed", "9", "--size", "800x600"}, script).status, 0);
  EXPECT_EQ(worstTile(readPNG(window).get(), readPNG(headless).get(), 0).wrong, 0);
}

INSTANTIATE_TEST_SUITE_P(BothPaths, WindowPixels, testing::Values("framebuffer", "gl", ""));

}  // namespace
}  // namespace zb::test
