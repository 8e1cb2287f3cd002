#include "engine/preferences.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <limits>

#include "engine/notification_center.hpp"
#include "engine/resources.hpp"

namespace zb {
namespace {

TEST(PreferencesTest, TypedReadsConvertBetweenStoredTypes) {
  MemoryPreferences p;
  EXPECT_EQ(p.integerForKey("absent"), 0);
  EXPECT_FALSE(p.boolForKey("absent"));
  EXPECT_EQ(p.floatForKey("absent"), 0);

  p.setFloat(0.6f, "f");
  EXPECT_EQ(p.floatForKey("f"), 0.6f);
  EXPECT_EQ(p.integerForKey("f"), 0);
  EXPECT_TRUE(p.boolForKey("f"));
  p.setFloat(-3.9f, "f");
  EXPECT_EQ(p.integerForKey("f"), -3);
  p.setFloat(1e30f, "f");
  EXPECT_EQ(p.integerForKey("f"), std::numeric_limits<int64_t>::max());
  p.setFloat(std::nanf(""), "f");
  EXPECT_EQ(p.integerForKey("f"), 0);

  p.setInteger(1234, "i");
  EXPECT_EQ(p.floatForKey("i"), 1234.0f);
  EXPECT_TRUE(p.boolForKey("i"));
  p.setBool(true, "b");
  EXPECT_EQ(p.integerForKey("b"), 1);
  EXPECT_EQ(p.floatForKey("b"), 1.0f);
}

TEST(PreferencesTest, StringsAreParsed) {
  MemoryPreferences p;
  auto set = [&](const char* text) { p.setObject("s", std::string(text)); };
  for (const char* yes : {"true", "YES", "Yes", " TRUE ", "1", "42", "-2", "0.5"}) {
    set(yes);
    EXPECT_TRUE(p.boolForKey("s")) << yes;
  }
  for (const char* no : {"false", "no", "0", "", "maybe", "0.0"}) {
    set(no);
    EXPECT_FALSE(p.boolForKey("s")) << no;
  }
  set("  37 points");
  EXPECT_EQ(p.integerForKey("s"), 37);
  set("3.75");
  EXPECT_EQ(p.integerForKey("s"), 3);
  EXPECT_EQ(p.floatForKey("s"), 3.75f);
  set("+0.25");
  EXPECT_EQ(p.floatForKey("s"), 0.25f);
  set("99999999999999999999999");
  EXPECT_EQ(p.integerForKey("s"), std::numeric_limits<int64_t>::max());
  set("volume");
  EXPECT_EQ(p.floatForKey("s"), 0);
}

TEST(PreferencesTest, MemoryStoreKeepsRemovesAndLists) {
  MemoryPreferences p;
  p.setInteger(5, "quorraHighScore");
  p.setBool(true, "quorra_settingShowFPS");
  p.setInteger(7, "quorraHighScore");
  p.removeObject("quorra_settingShowFPS");
  p.removeObject("never there");
  auto all = p.dictionaryRepresentation();
  ASSERT_EQ(all.size(), 1u);
  EXPECT_EQ(std::get<int64_t>(all.at("quorraHighScore")), 7);
}

TEST(ResourceBundleTest, FindsOnlyExistingRegularFiles) {
  std::filesystem::path folder = std::filesystem::path(testing::TempDir()) / "zb_resources_test";
  std::filesystem::create_directories(folder / "dir.mp3");
  std::ofstream(folder / "jump.mp3") << "x";
  ResourceBundle bundle(folder);
  EXPECT_EQ(bundle.urlForResource("jump", "mp3"), folder / "jump.mp3");
  EXPECT_FALSE(bundle.urlForResource("click", "mp3"));
  EXPECT_FALSE(bundle.urlForResource("dir", "mp3"));
  EXPECT_FALSE(ResourceBundle().urlForResource("jump", "mp3"));
  EXPECT_FALSE(fileExistsAtPath(std::string(5000, 'a')));
  EXPECT_FALSE(fileExistsAtPath(""));
  std::filesystem::remove_all(folder);
}

TEST(NotificationCenterTest, DeliversByNameAndObjectInRegistrationOrder) {
  NotificationCenter center;
  int window = 0, other = 0;
  std::string log;
  center.addObserver(&log, kWindowDidEnterFullScreenNotification, &window, [&] { log += "a"; });
  center.addObserver(&other, kWindowDidEnterFullScreenNotification, nullptr, [&] {
    log += "b";
    center.removeObserver(&log);  // a handler may unregister others
  });
  center.addObserver(&log, kWindowDidExitFullScreenNotification, nullptr, [&] { log += "c"; });
  center.post(kWindowDidEnterFullScreenNotification, &other);
  EXPECT_EQ(log, "b");
  center.removeObserver(&other);
  center.addObserver(&log, kWindowDidEnterFullScreenNotification, &window, [&] { log += "a"; });
  center.post(kWindowDidEnterFullScreenNotification, &window);
  center.post(kWindowDidExitFullScreenNotification, &window);
  EXPECT_EQ(log, "ba");
  EXPECT_EQ(center.observerCount(), 1u);
}

}  // namespace
}  // namespace zb
