// Playing without a mouse: a player with only a keyboard, and one with only a pad, reach and press
// every button of every page through the headless driver, and the focus they follow is drawn legibly.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "headless/headless_test_support.hpp"

namespace zb::test {
namespace {

// A script written as a player's session, with a dump after each moment worth checking.
class Walk {
 public:
  explicit Walk(std::string press) : press_(std::move(press)) {}
  Walk& tap(const std::string& what) {
    script_ += press_ + " down " + what + "\n" + press_ + " up " + what.substr(0, what.find(' ')) + "\n";
    return *this;
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

TEST(FocusWalk, AKeyboardAloneReachesAndPressesEveryButtonOfEveryPage) {
  Walk walk("key");
  walk.expect("menu", "")
      .tap("tab").expect("menu", "btn_start")  // the first move only shows the focus
      .tap("down").tap("return").expect("settings", "")
      .tap("down").tap("return")  // Show FPS
      .tap("tab").tap("return")   // Music
      .tap("down").tap("return")  // -
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
  ASSERT_EQ(dumps.size(), 14u);
  const Json& settings = dumps[3];
  EXPECT_EQ(settings["settingShowFPS"], true);
  EXPECT_EQ(settings["settingMusicEnabled"], false);
  EXPECT_NEAR(settings["settingMusicVolume"].get<double>(), 0.7, 1e-6);
  EXPECT_EQ(dumps[5]["view"]["fullscreen"], true);
  EXPECT_EQ(dumps[6]["bufferedJumpFramesRemaining"], 9) << "Start by key jumps as a click on it does";
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

}  // namespace
}  // namespace zb::test
