// What the window shows, compared with committed pictures: the four pages, a run with each kind of
// obstacle, and each palette, at 800 x 600 from a fixed seed. ZB_UPDATE_SCREENSHOTS=1 writes the
// pictures into tests/e2e/reference/ instead of comparing; look at each one before committing it.
#include <cairo.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <functional>
#include <memory>

#include "headless/headless_test_support.hpp"
#include "e2e/child_process.hpp"

namespace zb::test {
namespace {

namespace fs = std::filesystem;

const fs::path kReferences = fs::path(ZB_SOURCE_DIR) / "tests" / "e2e" / "reference";
// Text edges may be smoothed a little differently by another font library version, so a channel
// may be a little off; but a wrong digit or a missing bird is a dozen pixels in one spot, so every
// 16 x 16 tile may hold only a few wrong pixels.
constexpr int kChannelTolerance = 8;
constexpr int kTile = 16;
constexpr int kMaxWrongPerTile = 4;

struct Shot {
  const char* name;
  const char* reach;  // script lines from the previous picture to this one
  const char* state;
  int palette;
  std::vector<std::string> kinds;  // obstacle kinds wholly in the picture
};

// Seed 1 with the built-in player: the frames were chosen from its dumps.
const std::vector<Shot> kShots = {
    {"menu", "step 20\n", "menu", 0, {}},
    {"settings", "click 400 250\nstep 2\n", "settings", 0, {}},
    {"run-boxes", "click 400 213\nkey down space\nautoplay 250\n", "playing", 0, {"boxMedium", "boxMedium"}},
    {"paused", "key down p\nstep 2\n", "paused", 0, {"boxMedium", "boxMedium"}},
    {"run-barrel", "key down p\nautoplay 270\n", "playing", 1, {"boxMedium", "barrel"}},
    {"run-palette-2", "autoplay 320\n", "playing", 2, {"barrel", "boxMedium"}},
    {"run-plane-medium", "autoplay 510\n", "playing", 3, {"boxLarge", "planeMedium"}},
    {"run-plane-high", "autoplay 340\n", "playing", 0, {"planeMedium", "planeHigh"}},
    // Left alone, the player runs into a box at a score of 1864, in palette 1.
    {"explosion", "step 180\n", "gameOver", 1, {"boxMedium", "boxSmall"}},
    {"game-over", "step 220\n", "gameOver", 1, {"boxMedium", "boxSmall"}},
};

using Surface = std::unique_ptr<cairo_surface_t, decltype(&cairo_surface_destroy)>;

Surface readPNG(const fs::path& file) {
  Surface surface(cairo_image_surface_create_from_png(file.c_str()), &cairo_surface_destroy);
  if (cairo_surface_status(surface.get()) != CAIRO_STATUS_SUCCESS) return {nullptr, &cairo_surface_destroy};
  return surface;
}

struct TileDifference {
  int wrong = 0;  // pixels off by more than the tolerance in the worst tile; everything for another size
  int x = 0;      // that tile's top-left corner
  int y = 0;
};

TileDifference worstTile(cairo_surface_t* a, cairo_surface_t* b) {
  const int width = cairo_image_surface_get_width(a);
  const int height = cairo_image_surface_get_height(a);
  if (width != cairo_image_surface_get_width(b) || height != cairo_image_surface_get_height(b)) {
    return {width * height, 0, 0};
  }
  cairo_surface_flush(a);
  cairo_surface_flush(b);
  const auto pixel = [](cairo_surface_t* s, int x, int y) {
    return reinterpret_cast<const uint32_t*>(cairo_image_surface_get_data(s) + y * cairo_image_surface_get_stride(s))[x];
  };
  std::vector<int> wrong(static_cast<size_t>((width / kTile + 1) * (height / kTile + 1)), 0);
  TileDifference worst;
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      const uint32_t pa = pixel(a, x, y), pb = pixel(b, x, y);
      bool close = true;
      for (int shift : {0, 8, 16}) {
        close = close && std::abs(int((pa >> shift) & 0xFF) - int((pb >> shift) & 0xFF)) <= kChannelTolerance;
      }
      if (close) continue;
      int& count = wrong[static_cast<size_t>((y / kTile) * (width / kTile + 1) + x / kTile)];
      if (++count > worst.wrong) worst = {count, x / kTile * kTile, y / kTile * kTile};
    }
  }
  return worst;
}

std::vector<std::string> kindsInPicture(const Json& dump) {
  std::vector<std::string> kinds;
  for (const Json& obstacle : dump["obstacles"]) {
    const Json& frame = obstacle["accumulatedFrame"];
    if (frame[0].get<double>() >= 0 && frame[0].get<double>() + frame[2].get<double>() <= dump["size"][0].get<double>()) {
      kinds.push_back(obstacle["type"].get<std::string>());
    }
  }
  return kinds;
}

TEST(Screenshots, PagesRunsObstaclesAndPalettesLookAsCommitted) {
  const bool update = std::getenv("ZB_UPDATE_SCREENSHOTS") != nullptr;
  TempFolder folder("zb-screenshots");
  std::string script;
  for (const Shot& shot : kShots) {
    script += std::string(shot.reach) + "screenshot " + (folder.path() / shot.name).string() + ".png\ndump\n";
  }
  BinaryRun run = runBinary({ZB_BINARY, "--headless", "--seed", "1", "--fallback", "none"}, script);
  ASSERT_EQ(run.status, 0) << run.err;
  const std::vector<Json> dumps = HeadlessRun{run.status, run.out, run.err}.dumps();
  ASSERT_EQ(dumps.size(), kShots.size());

  for (size_t i = 0; i < kShots.size(); ++i) {
    const Shot& shot = kShots[i];
    SCOPED_TRACE(shot.name);
    // The picture must still show what it was chosen for; if play changed, choose new frames.
    EXPECT_EQ(dumps[i]["gameState"].get<std::string>(), shot.state);
    EXPECT_EQ(dumps[i]["currentPaletteIndex"].get<double>(), shot.palette);
    EXPECT_EQ(kindsInPicture(dumps[i]), shot.kinds);

    const fs::path actual = folder.path() / (std::string(shot.name) + ".png");
    const fs::path reference = kReferences / (std::string(shot.name) + ".png");
    if (update) {
      fs::create_directories(kReferences);
      fs::copy_file(actual, reference, fs::copy_options::overwrite_existing);
      continue;
    }
    Surface expected = readPNG(reference);
    Surface drawn = readPNG(actual);
    ASSERT_TRUE(expected) << "no reference " << reference << "; make it with ZB_UPDATE_SCREENSHOTS=1";
    ASSERT_TRUE(drawn) << "the game wrote no readable picture";
    const TileDifference difference = worstTile(expected.get(), drawn.get());
    if (difference.wrong > kMaxWrongPerTile) {
      const fs::path kept = fs::path(testing::TempDir()) / ("zb-screenshot-" + std::string(shot.name) + ".png");
      fs::copy_file(actual, kept, fs::copy_options::overwrite_existing);
      ADD_FAILURE() << difference.wrong << " pixels differ in the tile at " << difference.x << "," << difference.y
                    << " (from the top left) of " << reference << "; the picture drawn is " << kept;
    }
  }
}

// The comparison itself must notice one small element gone wrong: a stray bird in the sky.
TEST(Screenshots, TheComparisonCatchesOneStrayBird) {
  const Surface reference = readPNG(kReferences / "run-boxes.png");
  ASSERT_TRUE(reference);
  const int width = cairo_image_surface_get_width(reference.get());
  const int height = cairo_image_surface_get_height(reference.get());
  const auto copyWith = [&](const std::function<void(cairo_t*)>& change) {
    Surface copy(cairo_image_surface_create(CAIRO_FORMAT_RGB24, width, height), &cairo_surface_destroy);
    cairo_t* cr = cairo_create(copy.get());
    cairo_set_source_surface(cr, reference.get(), 0, 0);
    cairo_paint(cr);
    change(cr);
    cairo_destroy(cr);
    return copy;
  };
  EXPECT_EQ(worstTile(reference.get(), copyWith([](cairo_t*) {}).get()).wrong, 0);

  const Surface bird = copyWith([](cairo_t* cr) {
    cairo_set_source_rgb(cr, 0.2, 0.2, 0.2);
    cairo_set_line_width(cr, 2);
    cairo_move_to(cr, 500, 200);
    cairo_line_to(cr, 506, 197);
    cairo_line_to(cr, 512, 200);
    cairo_stroke(cr);
  });
  EXPECT_GT(worstTile(reference.get(), bird.get()).wrong, kMaxWrongPerTile);

}

}  // namespace
}  // namespace zb::test
