#include "engine/preferences.hpp"

#include <gtest/gtest.h>

#include <limits>
#include <string>

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

}  // namespace
}  // namespace zb
