#pragma once
// Where the game's sounds live: the build tree's resource folder when running from a build, else the
// installed one; and the fixed fallback folder compiled in.
#include <filesystem>

namespace zb {

std::filesystem::path defaultResourceFolder();
std::filesystem::path defaultFallbackFolder();

}  // namespace zb
