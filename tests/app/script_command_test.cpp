#include "app/script_command.hpp"

#include <gtest/gtest.h>

#include "engine/input_event.hpp"

namespace zb {
namespace {

template <typename Command>
Command parsed(std::string_view line) {
  ParsedLine result = parseScriptLine(line);
  EXPECT_FALSE(result.error) << line << ": " << result.error.value_or("");
  EXPECT_TRUE(result.command) << line;
  if (!result.command || !std::holds_alternative<Command>(*result.command)) {
    ADD_FAILURE() << line << " parsed as another command";
    return {};
  }
  return std::get<Command>(*result.command);
}

std::string errorFor(std::string_view line) {
  ParsedLine result = parseScriptLine(line);
  EXPECT_FALSE(result.command) << line;
  return result.error.value_or("(accepted)");
}

TEST(ScriptCommand, BlankAndCommentLinesAreSkipped) {
  for (std::string_view line : {"", "   ", "\t", "# a note", "   # indented note", "\r"}) {
    ParsedLine result = parseScriptLine(line);
    EXPECT_FALSE(result.command) << "'" << line << "'";
    EXPECT_FALSE(result.error) << "'" << line << "'";
  }
}

TEST(ScriptCommand, StepDefaultsToOneFrameAndTakesLargeCounts) {
  EXPECT_EQ(parsed<StepCommand>("step").frames, 1u);
  EXPECT_EQ(parsed<StepCommand>("step 0").frames, 0u);
  EXPECT_EQ(parsed<StepCommand>("  step   600  ").frames, 600u);
  EXPECT_EQ(parsed<StepCommand>("step 10000000000").frames, 10000000000u);
  EXPECT_EQ(parsed<StepCommand>("step 3\r").frames, 3u);
  EXPECT_EQ(parsed<AutoplayCommand>("autoplay 120").frames, 120u);
}

TEST(ScriptCommand, KeysByNameOrCodeWithOptionalAlt) {
  KeyCommand space = parsed<KeyCommand>("key down space");
  EXPECT_TRUE(space.down);
  EXPECT_EQ(space.keyCode, keycode::space);
  EXPECT_FALSE(space.alt);

  KeyCommand fullScreen = parsed<KeyCommand>("key down return alt");
  EXPECT_EQ(fullScreen.keyCode, keycode::returnKey);
  EXPECT_TRUE(fullScreen.alt);

  EXPECT_EQ(parsed<KeyCommand>("key down enter").keyCode, keycode::keypadEnter);
  EXPECT_EQ(parsed<KeyCommand>("key down escape").keyCode, keycode::escape);
  EXPECT_EQ(parsed<KeyCommand>("key down p").keyCode, keycode::p);
  EXPECT_EQ(parsed<KeyCommand>("key up down").keyCode, keycode::downArrow);
  EXPECT_FALSE(parsed<KeyCommand>("key up down").down);
  // A single digit is the digit key; longer numbers are raw key codes.
  EXPECT_EQ(parsed<KeyCommand>("key down 49").keyCode, keycode::space);
  EXPECT_EQ(parsed<KeyCommand>("key down 65535").keyCode, 65535);
  EXPECT_NE(parsed<KeyCommand>("key down 1").keyCode, 1);
}

TEST(ScriptCommand, PointerSizeAndPreferenceArguments) {
  ClickCommand click = parsed<ClickCommand>("click 400 312.5");
  EXPECT_EQ(click.location, (Point{400, 312.5}));
  EXPECT_EQ(parsed<MoveCommand>("move -3 7").location, (Point{-3, 7}));
  EXPECT_EQ(parsed<ResizeCommand>("resize 1024 768").size, (Size{1024, 768}));
  EXPECT_EQ(parsed<ResizeCommand>("resize 0 -0").size, (Size{0, 0}));

  PrefSetCommand integer = parsed<PrefSetCommand>("pref set quorraHighScore int 1234");
  EXPECT_EQ(integer.key, "quorraHighScore");
  EXPECT_EQ(integer.value, PreferenceValue(int64_t{1234}));
  EXPECT_EQ(parsed<PrefSetCommand>("pref set k bool false").value, PreferenceValue(false));
  EXPECT_EQ(parsed<PrefSetCommand>("pref set k float 0.3").value, PreferenceValue(0.3f));
  EXPECT_EQ(parsed<PrefSetCommand>("pref set k string two  words").value, PreferenceValue(std::string("two  words")));
  EXPECT_EQ(parsed<PrefRemoveCommand>("pref remove k").key, "k");
  EXPECT_EQ(parsed<ScreenshotCommand>("screenshot /tmp/shot.png").file, "/tmp/shot.png");
}

TEST(ScriptCommand, MalformedLinesSayWhatIsWrong) {
  EXPECT_EQ(errorFor("jump"), "unknown command 'jump'");
  EXPECT_EQ(errorFor("Step 1"), "unknown command 'Step'");
  EXPECT_EQ(errorFor("step -1"), "step: frame count must be a whole number of 0 or more, not '-1'");
  EXPECT_EQ(errorFor("step ten"), "step: frame count must be a whole number of 0 or more, not 'ten'");
  EXPECT_EQ(errorFor("step 1.5"), "step: frame count must be a whole number of 0 or more, not '1.5'");
  EXPECT_EQ(errorFor("step 1 2"), "step: unexpected '2'");
  EXPECT_EQ(errorFor("autoplay"), "autoplay: missing frame count");
  EXPECT_EQ(errorFor("dump now"), "dump: unexpected 'now'");
  EXPECT_EQ(errorFor("launch 2"), "launch: unexpected '2'");
  EXPECT_EQ(errorFor("key"), "key: missing 'down' or 'up'");
  EXPECT_EQ(errorFor("key press space"), "key: expected 'down' or 'up', not 'press'");
  EXPECT_EQ(errorFor("key down"), "key: missing key name");
  EXPECT_EQ(errorFor("key down spacebar"), "key: unknown key 'spacebar'");
  EXPECT_EQ(errorFor("key down 65536"), "key: unknown key '65536'");
  EXPECT_EQ(errorFor("key down space shift"), "key: expected 'alt', not 'shift'");
  EXPECT_EQ(errorFor("key up space alt"), "key: unexpected 'alt'");
  EXPECT_EQ(errorFor("click 10"), "click: missing Y");
  EXPECT_EQ(errorFor("click x 10"), "click: X must be a number, not 'x'");
  EXPECT_EQ(errorFor("click nan 10"), "click: X must be a number, not 'nan'");
  EXPECT_EQ(errorFor("resize -0.5 600"), "resize: width must be a number of 0 or more, not '-0.5'");
  EXPECT_EQ(errorFor("resize 800 inf"), "resize: height must be a number of 0 or more, not 'inf'");
  EXPECT_EQ(errorFor("pref set k double 1"), "pref: type must be int, bool, float or string, not 'double'");
  EXPECT_EQ(errorFor("pref set k bool yes"), "pref: bool value must be 'true' or 'false', not 'yes'");
  EXPECT_EQ(errorFor("pref set k int 1.5"), "pref: int value must be a whole number, not '1.5'");
  EXPECT_EQ(errorFor("pref set k int 99999999999999999999"),
            "pref: int value must be a whole number, not '99999999999999999999'");
  EXPECT_EQ(errorFor("pref set k float abc"), "pref: float value must be a number, not 'abc'");
  EXPECT_EQ(errorFor("pref set k int"), "pref: missing value");
  EXPECT_EQ(errorFor("pref set k string"), "pref: missing value");
  EXPECT_EQ(errorFor("pref get k"), "pref: expected 'set' or 'remove', not 'get'");
  EXPECT_EQ(errorFor("pref remove"), "pref: missing key");
  EXPECT_EQ(errorFor("screenshot"), "screenshot: missing file name");
  EXPECT_EQ(errorFor("fullscreen on"), "fullscreen: unexpected 'on'");
}

}  // namespace
}  // namespace zb
