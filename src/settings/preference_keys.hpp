#pragma once
// The names under which the best score and the three settings live in the preferences store. Other
// copies of the game read the same keys, so they never change.
#include <string_view>

namespace zb {

inline constexpr std::string_view kHighScoreKey = "quorraHighScore";
inline constexpr std::string_view kShowFPSKey = "quorra_settingShowFPS";
inline constexpr std::string_view kMusicEnabledKey = "quorra_settingMusicEnabled";
inline constexpr std::string_view kMusicVolumeKey = "quorra_settingMusicVolume";

// Options with no page of their own: players set them in the preferences file.
inline constexpr std::string_view kPauseOnFocusLossKey = "zindlebop_pauseOnFocusLoss";
inline constexpr std::string_view kReducedMotionKey = "zindlebop_reducedMotion";
inline constexpr std::string_view kGameSpeedKey = "zindlebop_gameSpeed";
inline constexpr std::string_view kJumpKeysKey = "zindlebop_keys_jump";
inline constexpr std::string_view kDuckKeysKey = "zindlebop_keys_duck";
inline constexpr std::string_view kPauseKeysKey = "zindlebop_keys_pause";
inline constexpr std::string_view kLeaveKeysKey = "zindlebop_keys_leave";

}  // namespace zb
