// The renderer finds its masks here frame after frame: a wrong or lost mask would draw the wrong shape.
#include "render/stamp_cache.hpp"

#include <cairo.h>
#include <gtest/gtest.h>

#include <map>
#include <random>

namespace zb {
namespace {

// A mask of `width` x 1 pixels that says which key it was made for in its first byte.
cairo_surface_t* maskFor(uint64_t key, int width) {
  cairo_surface_t* mask = cairo_image_surface_create(CAIRO_FORMAT_A8, width, 1);
  cairo_surface_flush(mask);
  cairo_image_surface_get_data(mask)[0] = static_cast<unsigned char>(key % 251);
  cairo_surface_mark_dirty(mask);
  return mask;
}

unsigned char firstByte(pixman_image_t* image) { return *reinterpret_cast<unsigned char*>(pixman_image_get_data(image)); }

void keep(StampCache& cache, uint64_t key, int width) {
  cairo_surface_t* mask = maskFor(key, width);
  ASSERT_NE(cache.keep(key, mask), nullptr);
  cairo_surface_destroy(mask);
}

// Thousands of masks come and go, with keys crowding the same slots: every kept one is found whole.
TEST(StampCache, FindsEveryKeptMaskThroughManyKeepsAndDrops) {
  StampCache cache(64 * 1024);
  std::mt19937_64 random(7);
  std::map<uint64_t, bool> kept;
  for (int frame = 0; frame < 400; ++frame) {
    for (int i = 0; i < 20; ++i) {
      // Few distinct high bits and many low ones: neighbours in the table.
      const uint64_t key = (random() % 4) << 60 | (random() % 5000);
      if (cache.find(key) == nullptr) keep(cache, key, 256);
      kept[key] = true;
    }
    cache.endFrame();
    EXPECT_LE(cache.bytes(), 64 * 1024 + 20 * 256);
  }
  int found = 0;
  for (const auto& [key, _] : kept) {
    if (pixman_image_t* image = cache.find(key)) {
      ++found;
      EXPECT_EQ(firstByte(image), key % 251) << "key " << key;
    }
  }
  EXPECT_GT(found, 100) << "masks within the budget stay";
}

TEST(StampCache, OverTheBudgetLetsTheLeastRecentlyUsedGoButNeverOneUsedThisFrame) {
  StampCache cache(4 * 1024);
  for (uint64_t key = 1; key <= 4; ++key) keep(cache, key, 1024);
  cache.endFrame();
  ASSERT_NE(cache.find(1), nullptr);  // 1 is now the most recently used
  keep(cache, 5, 1024);
  keep(cache, 6, 1024);
  cache.endFrame();  // over the budget: down to three quarters of it, from the oldest unused
  for (uint64_t key = 1; key <= 6; ++key) EXPECT_EQ(cache.find(key) != nullptr, key == 1 || key >= 5) << key;
}

}  // namespace
}  // namespace zb
