#pragma once
// The names under which the best score and the three settings live in the preferences store. Other
// copies of the game read the same keys, so they never change.
#include <string_view>

namespace zb {

inline constexpr std::string_view kHighScoreKey = "quorraHighScore";
inline constexpr std::string_view kShowFPSKey = "quorra_settingShowFPS";
inline constexpr std::string_view kMusicEnabledKey = "quorra_settingMusicEnabled";
inline constexpr std::string_view kMusicVolumeKey = "quorra_settingMusicVolume";

}  // namespace zb
