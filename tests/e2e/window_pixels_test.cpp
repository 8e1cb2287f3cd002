// The real game in a virtual X display: what the window shows after the built-in player's steps is,
// pixel for pixel, what the headless driver draws after the same steps, on both ways of presenting.
#include <gtest/gtest.h>
#include <cairo.h>

#include <cstdio>
#include <memory>
#include <regex>
#include <string>

#include "e2e/child_process.hpp"

namespace zb::test {
namespace {

using Surface = std::unique_ptr<cairo_surface_t, decltype(&cairo_surface_destroy)>;

Surface loadPng(const std::string& file) { return {cairo_image_surface_create_from_png(file.c_str()), &cairo_surface_destroy}; }

// Differing pixels, or -1 when the pictures cannot be compared at all.
int64_t differingPixels(cairo_surface_t* a, cairo_surface_t* b) {
  if (cairo_surface_status(a) != CAIRO_STATUS_SUCCESS || cairo_surface_status(b) != CAIRO_STATUS_SUCCESS) return -1;
  const int width = cairo_image_surface_get_width(a);
  const int height = cairo_image_surface_get_height(a);
  if (width != cairo_image_surface_get_width(b) || height != cairo_image_surface_get_height(b)) return -1;
  int64_t count = 0;
  for (int y = 0; y < height; ++y) {
    const auto* ra = reinterpret_cast<const uint32_t*>(cairo_image_surface_get_data(a) + y * cairo_image_surface_get_stride(a));
    const auto* rb = reinterpret_cast<const uint32_t*>(cairo_image_surface_get_data(b) + y * cairo_image_surface_get_stride(b));
    for (int x = 0; x < width; ++x) count += (ra[x] & 0xffffff) != (rb[x] & 0xffffff);
  }
  return count;
}

struct WindowRun {
  BinaryRun run;
  std::string present;  // the "present:" line's path
  long steps = -1;
};

WindowRun runWindow(const std::string& present, const std::vector<std::string>& options) {
  // The virtual display's GL driver leaves allocations behind that no suppression can name.
  std::vector<std::string> command = {"/usr/bin/env", "-u", "ZINDLEBOP_PRESENT", "ASAN_OPTIONS=detect_leaks=0",
                                      "SDL_AUDIODRIVER=dummy", "ZINDLEBOP_REPORT_FRAMES=1", "ZINDLEBOP_REPORT_PRESENT=1"};
  if (!present.empty()) command.push_back("ZINDLEBOP_PRESENT=" + present);
  for (const char* word : {"xvfb-run", "-a", "-s", "-screen 0 1024x768x24", ZB_BINARY}) command.push_back(word);
  command.insert(command.end(), options.begin(), options.end());
  WindowRun result{runBinary(command), "", -1};
  std::smatch match;
  if (std::regex_search(result.run.err, match, std::regex("present: (\\w+)"))) result.present = match[1];
  if (std::regex_search(result.run.err, match, std::regex("frames: \\d+ drawn, (\\d+) steps"))) result.steps = std::stol(match[1]);
  return result;
}

class WindowPixels : public testing::TestWithParam<const char*> {
 protected:
  void SetUp() override {
    if (std::system("command -v xvfb-run >/dev/null 2>&1") != 0) GTEST_SKIP() << "xvfb-run is not installed";
  }
};

TEST_P(WindowPixels, WindowAfterAutoplayEqualsTheHeadlessPicture) {
  const std::string path = GetParam();
  const std::string base = testing::TempDir() + "zb_window_pixels_" + path;
  const WindowRun window = runWindow(path, {"--autoplay", "--frames", "300", "--seed", "9", "--size", "800x600",
                                            "--prefs", base + ".ini", "--screenshot", base + "_window.png"});
  ASSERT_EQ(window.run.status, 0) << window.run.err;
  ASSERT_EQ(window.present, path) << window.run.err;
  ASSERT_GE(window.steps, 300) << window.run.err;

  const std::string script = "autoplay " + std::to_string(window.steps) + "\nscreenshot " + base + "_headless.png\n";
  const BinaryRun headless = runBinary({ZB_BINARY, "--headless", "--seed", "9", "--size", "800x600"}, script);
  ASSERT_EQ(headless.status, 0) << headless.err;
  const Surface shown = loadPng(base + "_window.png");
  const Surface expected = loadPng(base + "_headless.png");
  EXPECT_EQ(differingPixels(shown.get(), expected.get()), 0);
  for (const char* suffix : {".ini", "_window.png", "_headless.png"}) std::remove((base + suffix).c_str());
}

INSTANTIATE_TEST_SUITE_P(BothPaths, WindowPixels, testing::Values("framebuffer", "gl"));

TEST_F(WindowPixels, WithoutAGraphicsCardTheFramebufferIsChosenAndABadChoiceIsNamed) {
  const std::string prefs = testing::TempDir() + "zb_window_choice.ini";
  // The virtual display has no graphics card behind it, so nothing but the framebuffer makes sense.
  const WindowRun chosen = runWindow("", {"--frames", "5", "--prefs", prefs});
  EXPECT_EQ(chosen.run.status, 0) << chosen.run.err;
  EXPECT_EQ(chosen.present, "framebuffer") << chosen.run.err;
  const WindowRun odd = runWindow("vulkan", {"--frames", "5", "--prefs", prefs});
  EXPECT_EQ(odd.run.status, 0) << odd.run.err;
  EXPECT_EQ(odd.present, "framebuffer");
  EXPECT_NE(odd.run.err.find("ZINDLEBOP_PRESENT must be gl or framebuffer, not 'vulkan'"), std::string::npos) << odd.run.err;
  std::remove(prefs.c_str());
}

}  // namespace
}  // namespace zb::test
