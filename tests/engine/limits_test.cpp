// Values at their limits: preference reads convert and clamp, arithmetic traps, messages stay one safe line.
#include "engine/preferences.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>

#include "engine/checked.hpp"
#include "engine/quoted_text.hpp"
#include "engine/random.hpp"

namespace zb {
namespace {

TEST(PreferencesTest, TypedReadsConvertWhateverWasStored) {
  constexpr int64_t kMax = std::numeric_limits<int64_t>::max();
  struct Case {
    PreferenceValue stored;
    int64_t asInteger;
    float asFloat;
    bool asBool;
  };
  const Case cases[] = {
      {0.6f, 0, 0.6f, true},
      {1e30f, kMax, 1e30f, true},
      {std::string("  37 points"), 37, 37.0f, true},
      {std::string(" Yes "), 0, 0.0f, true},
      {std::string("maybe"), 0, 0.0f, false},
      {std::string("99999999999999999999999"), kMax, 1e23f, true},
  };
  MemoryPreferences prefs;
  EXPECT_EQ(prefs.integerForKey("k"), 0);
  EXPECT_FALSE(prefs.boolForKey("k"));
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::PrintToString(c.stored));
    prefs.setObject("k", c.stored);
    EXPECT_EQ(prefs.integerForKey("k"), c.asInteger);
    EXPECT_EQ(prefs.floatForKey("k"), c.asFloat);
    EXPECT_EQ(prefs.boolForKey("k"), c.asBool);
  }
}

// Where a stored number is clamped, arithmetic on the game's counters stops the program instead.
TEST(CheckedDeathTest, OverflowStopsTheProgram) {
  EXPECT_EQ(checkedAdd(INT64_MAX - 1, 1), INT64_MAX);
  EXPECT_EQ(checkedTruncate(-2.9), -2);
  EXPECT_DEATH(checkedAdd(INT64_MAX, 1), "");
  EXPECT_DEATH(checkedMul(INT64_MAX, 2), "");
  EXPECT_DEATH(checkedDiv(1, 0), "");
  EXPECT_DEATH(checkedTruncate(9223372036854775808.0), "");
  EXPECT_DEATH(Random(1).uniformInt(2, 1), "");
}

TEST(QuotedText, ControlBytesAreShownAsEscapesAndLongTextIsCutBetweenCharacters) {
  // C0, DEL, C1 as UTF-8 and as a raw byte, a byte that is not UTF-8, a backslash; é stays.
  EXPECT_EQ(quotedForMessage("a\tb\x7F\xC2\x9B\x9B\xFF\\\xC3\xA9"), "'a\\x09b\\x7f\\x9b\\x9b\\xff\\\\\xC3\xA9'");
  EXPECT_EQ(quotedForMessage(std::string(100, '\x01'), 10), "'\\x01\\x01'...") << "never half an escape";
  EXPECT_EQ(quotedForMessage("\xC3\xA9\xC3\xA9", 3), "'\xC3\xA9'...") << "never half a character";

  const std::string line = oneLine("bad \x1B[2J " + std::string(1000, 'y'));
  EXPECT_TRUE(line.starts_with("bad \\x1b[2J yyy")) << line;
  EXPECT_EQ(line.size(), kMaxMessageBytes);
  EXPECT_TRUE(line.ends_with("y...")) << line;
}

}  // namespace
}  // namespace zb
