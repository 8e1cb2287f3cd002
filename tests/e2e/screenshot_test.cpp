// What the window shows, compared with committed pictures: the four pages, a run with each kind of
// obstacle, and each palette, at 800 x 600 from a fixed seed. ZB_UPDATE_SCREENSHOTS=1 writes the
// pictures into tests/e2e/reference/ instead of comparing; look at each one before committing it.
#include <cairo.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <memory>

#include "headless/headless_test_support.hpp"
#include "e2e/child_process.hpp"

namespace zb::test {
namespace {

namespace fs = std::filesystem;

const fs::path kReferences = fs::path(ZB_SOURCE_DIR) / "tests" / "e2e" / "reference";
// Text edges may be smoothed a little differently by another font library version, but one changed
// word is a few hundred pixels, so little more than that may differ.
constexpr int kChannelTolerance = 8;
constexpr double kRequiredMatch = 0.999;

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

// The share of pixels whose red, green and blue each lie within the tolerance; 0 for another size.
double matchingShare(cairo_surface_t* a, cairo_surface_t* b) {
  const int width = cairo_image_surface_get_width(a);
  const int height = cairo_image_surface_get_height(a);
  if (width != cairo_image_surface_get_width(b) || height != cairo_image_surface_get_height(b)) return 0;
  cairo_surface_flush(a);
  cairo_surface_flush(b);
  long matching = 0;
  for (int y = 0; y < height; ++y) {
    auto rowOf = [y](cairo_surface_t* s) {
      return reinterpret_cast<const uint32_t*>(cairo_image_surface_get_data(s) + y * cairo_image_surface_get_stride(s));
    };
    const uint32_t* rowA = rowOf(a);
    const uint32_t* rowB = rowOf(b);
    for (int x = 0; x < width; ++x) {
      bool close = true;
      for (int shift : {0, 8, 16}) {
        close = close && std::abs(int((rowA[x] >> shift) & 0xFF) - int((rowB[x] >> shift) & 0xFF)) <= kChannelTolerance;
      }
      matching += close;
    }
  }
  return double(matching) / (double(width) * height);
}

std::vector<std::string> kindsInPicture(const Json& dump) {
  std::vector<std::string> kinds;
  for (const Json& obstacle : dump["obstacles"].items) {
    const Json& frame = obstacle["accumulatedFrame"];
    if (frame[0].number >= 0 && frame[0].number + frame[2].number <= dump["size"][0].number) {
      kinds.push_back(obstacle["type"].text);
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
    EXPECT_EQ(dumps[i]["gameState"].text, shot.state);
    EXPECT_EQ(dumps[i]["currentPaletteIndex"].number, shot.palette);
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
    const double share = matchingShare(expected.get(), drawn.get());
    if (share < kRequiredMatch) {
      const fs::path kept = fs::path(testing::TempDir()) / ("zb-screenshot-" + std::string(shot.name) + ".png");
      fs::copy_file(actual, kept, fs::copy_options::overwrite_existing);
      ADD_FAILURE() << "only " << share * 100 << "% of the pixels match " << reference << "; the picture drawn is "
                    << kept;
    }
  }
}

}  // namespace
}  // namespace zb::test
