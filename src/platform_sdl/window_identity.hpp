#pragma once
// Who the game's window says it is: the application id as its class (X11 WM_CLASS, Wayland app id),
// matching the desktop entry's StartupWMClass so that docks group it under its launcher, and the
// installed icon as its own, so that window managers do not show a generic one.
#include <cstddef>

struct SDL_Window;

namespace zb {

// The window icon's PNG, made at build time from the same source as the installed icons.
extern const unsigned char kWindowIconPng[];
extern const std::size_t kWindowIconPngSize;

// Before SDL's video starts: SDL2 reads the class once, from the environment, when the video driver
// opens. A class the user set in the environment is kept.
void announceWindowClass();

// After the window opens. A window without an icon is still a window, so failures pass silently.
void setWindowIcon(SDL_Window* window);

}  // namespace zb
