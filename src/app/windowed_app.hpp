#pragma once
// The game in a window: SDL, the window and its canvas, the sound, the scene, and the frame loop.
#include "app/command_line.hpp"

namespace zb {

// Plays until the window closes; returns the process exit status (kExitNoDisplay without a display).
int runWindowedGame(const CommandLineOptions& options);

}  // namespace zb
