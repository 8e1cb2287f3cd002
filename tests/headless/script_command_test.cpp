#include "headless/script_command.hpp"

#include <gtest/gtest.h>

#include "engine/input_event.hpp"

namespace zb {
namespace {

// The command a well-formed line stands for; a default one, failing the test, otherwise.
template <typename Command>
Command parsed(std::string_view line) {
  ParsedLine result = parseScriptLine(line);
  const Command* command = result.command ? std::get_if<Command>(&*result.command) : nullptr;
  EXPECT_TRUE(command) << line << ": " << result.error.value_or("parsed as another command");
  return command ? *command : Command{};
}

TEST(ScriptCommand, ReadsTheArgumentsOfEveryCommand) {
  EXPECT_EQ(parsed<StepCommand>("step").frames, 1u);
  EXPECT_EQ(parsed<StepCommand>("  step   10000000000 \r").frames, 10000000000u);
  EXPECT_EQ(parsed<AutoplayCommand>("autoplay 120").frames, 120u);
  EXPECT_EQ(parsed<KeyCommand>("key down return alt").modifierFlags, kOptionModifierFlag);
  EXPECT_EQ(parsed<KeyCommand>("key down tab ctrl shift").modifierFlags, kControlModifierFlag | kShiftModifierFlag);
  parsed<QuitCommand>("quit");
  EXPECT_FALSE(parsed<KeyCommand>("key up down").down);
  // Names, a digit key, and longer numbers as raw key codes.
  const std::pair<const char*, uint16_t> keys[] = {{"key down space", keycode::space},
                                                   {"key up down", keycode::downArrow},
                                                   {"key down 49", keycode::space},
                                                   {"key down 65535", 65535},
                                                   {"key down 0", 29}};
  for (const auto& [line, code] : keys) EXPECT_EQ(parsed<KeyCommand>(line).keyCode, code) << line;
  EXPECT_EQ(parsed<ClickCommand>("click 400 312.5").location, (Point{400, 312.5}));
  EXPECT_EQ(parsed<MoveCommand>("move -3 7").location, (Point{-3, 7}));
  EXPECT_EQ(parsed<ResizeCommand>("resize 1 16384").size, (Size{1, 16384}));
  EXPECT_EQ(parsed<PrefSetCommand>("pref set k int -12").value, PreferenceValue(int64_t{-12}));
  EXPECT_EQ(parsed<PrefSetCommand>("pref set k bool false").value, PreferenceValue(false));
  EXPECT_EQ(parsed<PrefSetCommand>("pref set k float 0.3").value, PreferenceValue(0.3f));
  EXPECT_EQ(parsed<PrefSetCommand>("pref set k string two  words").value, PreferenceValue(std::string("two  words")));
  EXPECT_EQ(parsed<PrefRemoveCommand>("pref remove k").key, "k");
  EXPECT_EQ(parsed<ScreenshotCommand>("screenshot /tmp/shot.png").file, "/tmp/shot.png");
  EXPECT_EQ(parsed<ScreenshotCommand>("screenshot /tmp/shot.png at 0.25").stepFraction, 0.25);
  for (const char* bad : {"screenshot a.png at 1", "screenshot a.png at -0.1", "screenshot a.png at half",
                          "screenshot a.png at", "screenshot a.png by 0.5", "screenshot a.png at 0.5 more"}) {
    EXPECT_FALSE(parseScriptLine(bad).command) << bad;
  }
}

}  // namespace
}  // namespace zb
