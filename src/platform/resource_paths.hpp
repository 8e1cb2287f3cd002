#pragma once
// Where the game's sounds live: the installed folder found from the executable's own place, else the
// build tree's resource folder when running from a build; and the fixed fallback folder compiled in.
#include <filesystem>

namespace zb {

std::filesystem::path defaultResourceFolder();
std::filesystem::path defaultFallbackFolder();

}  // namespace zb
