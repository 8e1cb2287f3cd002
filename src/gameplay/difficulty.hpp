#pragma once
// The one number the spawner and the score step share: every this many points the game speeds up
// and the next stage of obstacle kinds joins.
#include <cstdint>

namespace zb {

inline constexpr int64_t kDifficultyStepPoints = 400;

}  // namespace zb
