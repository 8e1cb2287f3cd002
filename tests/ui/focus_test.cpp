// Playing without a mouse: keyboard alone and pad alone reach every button, and the focus shows legibly.
#include <cairo.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "headless/headless_test_support.hpp"
#include "render/renderer.hpp"
#include "scene/scene_fixture.hpp"

namespace zb::test {
namespace {

// A script written as a player's session, with a dump after each moment worth checking.
class Walk {
 public:
  explicit Walk(std::string press) : press_(std::move(press)) {}
  Walk& tap(const std::string& what) {
    return line(press_ + " down " + what).line(press_ + " up " + what.substr(0, what.find(' ')));
  }
  Walk& line(const std::string& text) {
    script_ += text + "\n";
    return *this;
  }
  // What the dump must show then: the page and the focused button ("" for none).
  Walk& expect(const std::string& state, const std::string& focus) {
    script_ += "dump\n";
    expected_.push_back({state, focus});
    return *this;
  }
  std::vector<Json> run() const {
    const HeadlessRun run = runScript(script_);
    EXPECT_EQ(run.status, 0) << run.err;
    const std::vector<Json> dumps = run.dumps();
    EXPECT_EQ(dumps.size(), expected_.size());
    for (size_t i = 0; i < dumps.size() && i < expected_.size(); ++i) {
      const Json& focus = dumps[i]["focusedButton"];
      EXPECT_EQ(dumps[i]["gameState"], expected_[i].first) << "dump " << i;
      EXPECT_EQ(focus.is_null() ? "" : focus.get<std::string>(), expected_[i].second) << "dump " << i;
    }
    return dumps;
  }

 private:
  std::string press_;
  std::string script_ = "launch\n";
  std::vector<std::pair<std::string, std::string>> expected_;
};

// Long enough for the still figure of a new run to meet its first obstacle.
constexpr const char* kUntilCrash = "step 900";

TEST(FocusWalk, AKeyboardAloneReachesAndPressesEveryButtonOfEveryPageAndAHeldReturnRepeats) {
  Walk walk("key");
  walk.expect("menu", "")
      .tap("tab").expect("menu", "btn_start")  // the first move only shows the focus
      .tap("down").tap("return").expect("settings", "")
      .tap("down").tap("return")  // Show FPS
      .tap("tab").tap("return")   // Music
      .tap("down").line("key down return").line("step 23").expect("settings", "btn_vol_down")  // - held
      .line("step 2").expect("settings", "btn_vol_down")  // repeats after 0.4 s of scene time
      .line("step 6").expect("settings", "btn_vol_down")  // then every 0.1 s
      .line("key up return").line("step 30")
      .tap("right").tap("return").tap("return")  // + twice
      .expect("settings", "btn_vol_up")
      .tap("tab shift").tap("tab shift").tap("tab").tap("tab").tap("tab").tap("return")  // Back
      .expect("menu", "")
      .tap("up").tap("up").tap("return").line("step")  // Full Screen, up from Start
      .expect("menu", "btn_fullscreen")
      .tap("down").tap("return").expect("playing", "")  // Start
      .tap("tab").tap("return").expect("playing", "")   // nothing in a run
      .tap("p").tap("left").tap("return").expect("playing", "")  // Resume
      .tap("p").tap("up").tap("down").tap("return").expect("playing", "")  // Restart
      .tap("p").tap("down").tap("down").tap("down").tap("return").expect("menu", "")  // Main Menu
      .tap("space").line(kUntilCrash).tap("tab").expect("gameOver", "btn_retry")
      .tap("return").expect("playing", "")  // Retry
      .line(kUntilCrash).tap("down").tap("down").tap("return").expect("menu", "")  // Main Menu
      .tap("q ctrl").line("dump");  // quits: nothing after it runs
  const std::vector<Json> dumps = walk.run();
  ASSERT_EQ(dumps.size(), 17u);
  EXPECT_EQ(dumps[6]["settingShowFPS"], true);
  EXPECT_EQ(dumps[6]["settingMusicEnabled"], false);
  const double volumes[] = {0.5, 0.4, 0.3, 0.5};  // no repeat after the release
  for (size_t i = 0; i < 4; ++i) EXPECT_NEAR(dumps[3 + i]["settingMusicVolume"].get<double>(), volumes[i], 1e-6) << i;
  EXPECT_EQ(dumps[8]["view"]["fullscreen"], true);
  EXPECT_EQ(dumps[9]["bufferedJumpFramesRemaining"], 9) << "Start by key jumps as a click on it does";
}

TEST(FocusWalk, APadAloneReachesAndPressesEveryButtonOfEveryPage) {
  Walk walk("pad");
  walk.line("pad add")
      .tap("a").expect("playing", "")  // with no focus shown, A is Space
      .tap("back").expect("menu", "")
      .tap("dpdown").tap("dpdown").tap("a").expect("settings", "")
      .line("pad axis lefty 0.9").line("pad axis lefty 0").tap("a")   // Show FPS
      .line("pad axis lefty 0.7").line("pad axis lefty 0.2").tap("a")  // Music
      .tap("dpdown").tap("a").tap("dpright").tap("a")  // - then +
      .line("pad axis leftx -1").line("pad axis leftx 0").line("pad axis leftx 0.6").line("pad axis leftx 0")
      .expect("settings", "btn_vol_up")
      .tap("b").expect("menu", "")  // B leaves as Escape does
      .tap("dpup").tap("dpup").tap("a").line("step").expect("menu", "btn_fullscreen")
      .tap("dpdown").tap("a").expect("playing", "")
      .tap("start").tap("dpdown").tap("a").expect("playing", "")  // Resume
      .tap("start").tap("dpdown").tap("dpdown").tap("a").expect("playing", "")  // Restart
      .tap("start").tap("dpup").tap("dpdown").tap("dpdown").tap("dpdown").tap("a").expect("menu", "")
      .tap("a").line(kUntilCrash).tap("dpleft").tap("a").expect("playing", "")  // Retry
      .line(kUntilCrash).tap("dpdown").tap("dpdown").tap("a").expect("menu", "")
      .tap("b").expect("menu", "");  // Escape does nothing on the menu
  const std::vector<Json> dumps = walk.run();
  ASSERT_EQ(dumps.size(), 13u);
  EXPECT_EQ(dumps[3]["settingShowFPS"], true);
  EXPECT_EQ(dumps[3]["settingMusicEnabled"], false);
  EXPECT_NEAR(dumps[3]["settingMusicVolume"].get<double>(), 0.6, 1e-6);
  EXPECT_EQ(dumps[5]["view"]["fullscreen"], true);
}

// The window's picture as rows of 0x..RRGGBB pixels, bottom row first (y up).
struct Picture {
  explicit Picture(const View& view)
      : width(static_cast<int>(view.size().width)), height(static_cast<int>(view.size().height)) {
    cairo_surface_t* surface = cairo_image_surface_create(CAIRO_FORMAT_RGB24, width, height);
    cairo_t* cr = cairo_create(surface);
    Renderer().draw(cr, view, 1, 0);
    cairo_destroy(cr);
    cairo_surface_flush(surface);
    const int perRow = cairo_image_surface_get_stride(surface) / 4;
    const auto* data = reinterpret_cast<const uint32_t*>(cairo_image_surface_get_data(surface));
    for (int y = height - 1; y >= 0; --y) pixels.insert(pixels.end(), data + y * perRow, data + y * perRow + width);
    cairo_surface_destroy(surface);
  }
  uint32_t pixel(int x, int y) const { return pixels[static_cast<size_t>(y * width + x)]; }
  int width, height;
  std::vector<uint32_t> pixels;
};

// The contrast ratio of two 0x..RRGGBB pixels as accessibility guidelines define it.
double contrast(uint32_t a, uint32_t b) {
  const auto luminance = [](uint32_t p) {
    const auto linear = [p](int shift) {
      const double v = ((p >> shift) & 0xFF) / 255.0;
      return v <= 0.04045 ? v / 12.92 : std::pow((v + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(16) + 0.7152 * linear(8) + 0.0722 * linear(0);
  };
  const double la = luminance(a), lb = luminance(b);
  return (std::max(la, lb) + 0.05) / (std::min(la, lb) + 0.05);
}

// The mark is what changed when the focus showed. Its thickness is the run of pixels that stand out at
// least 3:1 from what was there before, through the middle of its left side and of its bottom.
int markThickness(const Picture& before, const Picture& after) {
  int x0 = after.width, y0 = after.height, x1 = -1, y1 = -1;
  for (int y = 0; y < after.height; ++y) {
    for (int x = 0; x < after.width; ++x) {
      if (after.pixel(x, y) == before.pixel(x, y)) continue;
      x0 = std::min(x0, x), x1 = std::max(x1, x), y0 = std::min(y0, y), y1 = std::max(y1, y);
    }
  }
  const auto standsOut = [&](int x, int y) { return contrast(after.pixel(x, y), before.pixel(x, y)) >= 3; };
  const auto run = [&](int x, int y, int dx, int dy) {
    while (x < x1 && y < y1 && !standsOut(x, y)) x += dx, y += dy;  // the smoothed outer edge
    int length = 0;
    for (; x <= x1 && y <= y1 && standsOut(x, y); x += dx, y += dy) ++length;
    return length;
  };
  if (x1 < 0) return 0;
  return std::min(run(x0, (y0 + y1) / 2, 1, 0), run((x0 + x1) / 2, y0, 0, 1));
}

TEST(FocusMark, StandsOutAtLeastThreeToOneAndTwoPixelsThickOnEveryPageAndPaletteAndGrowsWithTheWindow) {
  using G = GameScene::GameState;
  for (const auto& [size, thickness] : {std::pair{Size{800, 600}, 2}, {Size{1600, 1200}, 4}}) {
    for (int64_t palette = 0; palette < 4; ++palette) {
      for (G page : {G::menu, G::settings, G::paused, G::gameOver}) {
        SCOPED_TRACE(testing::Message() << size.width << " palette " << palette << " " << toString(page));
        AttachedScene game({.size = size});
        game->applyPalette(palette);
        if (page == G::settings) game->openSettings();
        if (page == G::paused || page == G::gameOver) game->startGame();
        if (page == G::paused) game->pauseGame();
        if (page == G::gameOver) game->showGameOver();
        const Picture plain(*game.view);
        game.press(keycode::tab);  // the page's first button
        EXPECT_GE(markThickness(plain, Picture(*game.view)), thickness);
        game.press(keycode::tab, kShiftModifierFlag);  // back round to Full Screen, at the top
        ASSERT_EQ(game->focusedButtonName(), "btn_fullscreen");
        EXPECT_GE(markThickness(plain, Picture(*game.view)), thickness);
        game.view->mouseMoved();
        EXPECT_TRUE(Picture(*game.view).pixels == plain.pixels) << "a mouse move leaves the page as it was";
      }
    }
  }
}

}  // namespace
}  // namespace zb::test
