// A long autoplay: tree, pool and resident memory stay bounded, and each frame drawn from its changes
// matches a full redraw (the first 10,000, or all with ZINDLEBOP_DAMAGE=verify). The `soak` target
// sets ZB_SOAK_FRAMES to a million.
#include <cairo.h>
#include <glib.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iostream>
#include <sstream>

#include "headless/headless_session.hpp"
#include "headless/headless_test_support.hpp"
#include "render/renderer.hpp"

// The address sanitizer's, when linked in: hands back freed blocks held to catch late uses.
extern "C" [[gnu::weak]] void __sanitizer_purge_allocator();

namespace zb::test {
namespace {

long residentKB() {
  if (__sanitizer_purge_allocator != nullptr) __sanitizer_purge_allocator();
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);) {
    if (line.starts_with("VmRSS:")) return std::stol(line.substr(6));
  }
  return -1;
}

TEST(Soak, LongAutoplayKeepsTreePoolAndMemoryBounded) {
  constexpr uint64_t kSampleFrames = 5'000, kWarmUpFrames = 20'000;
  const char* asked = g_getenv("ZB_SOAK_FRAMES");
  const uint64_t frames = asked != nullptr ? g_ascii_strtoull(asked, nullptr, 10) : 100'000;
  // Verifying costs about half a millisecond a frame (several under the sanitizers).
  const uint64_t verifiedFrames = g_strcmp0(g_getenv("ZINDLEBOP_DAMAGE"), "verify") == 0 ? frames : 10'000;
  ASSERT_GT(frames, kWarmUpFrames) << "ZB_SOAK_FRAMES asks for too few frames";
  std::ostringstream out;
  HeadlessSession session(quietOptions(5), out);
  Renderer renderer;
  renderer.setVerifies(true);
  const PixelSize pixels{static_cast<int>(session.view().size().width), static_cast<int>(session.view().size().height)};
  cairo_surface_t* window = cairo_image_surface_create(CAIRO_FORMAT_RGB24, pixels.width, pixels.height);
  long warmKB = -1, largestKB = 0;
  for (uint64_t at = kSampleFrames; at <= frames; at += kSampleFrames) {
    for (uint64_t frame = at - kSampleFrames; frame < at && frame < verifiedFrames; ++frame) {
      session.run(AutoplayCommand{1});
      cairo_t* cr = cairo_create(window);
      renderer.drawChanges(cr, pixels, session.view(), 1, 60, frame > 0);
      cairo_destroy(cr);
      ASSERT_EQ(renderer.mismatchedPixels(), 0) << "frame " << frame << " differs from a full redraw";
    }
    if (at > verifiedFrames) session.run(AutoplayCommand{kSampleFrames});
    out.str("");
    session.run(DumpCommand{});
    const Json dump = Json::parse(out.str());
    EXPECT_LT(dump["nodeCount"].get<double>(), 400) << "frame " << at;
    for (const auto& [kind, count] : dump["pool"].items()) EXPECT_LT(count.get<double>(), 20) << kind << " at " << at;
    const long rssKB = residentKB();
    ASSERT_GT(rssKB, 0);
    if (at < kWarmUpFrames) continue;
    if (warmKB < 0) warmKB = rssKB;
    largestKB = std::max(largestKB, rssKB);
  }
  // Catches a few bytes kept a frame; the address sanitizer's own records grow 2 MB in a million frames.
  EXPECT_LT(largestKB - warmKB, 8 * 1024) << "resident memory grew after warm-up, from " << warmKB << " kB";
  cairo_surface_destroy(window);
  std::cout << "soak: " << frames << " frames; resident " << warmKB << " kB after warm-up, at most " << largestKB
            << " kB\n";
}

}  // namespace
}  // namespace zb::test
