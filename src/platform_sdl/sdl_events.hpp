#pragma once
// Hands one SDL event to the view: keys as virtual key codes (automatic repeats as presses), primary
// button presses in view points with y up, mouse motion, and the window's new size in points.
#include <SDL_events.h>

#include "engine/view.hpp"

namespace zb {

class SdlGamepads;

enum class EventOutcome { handled, quit };

EventOutcome dispatchEvent(const SDL_Event& event, View& view);
// The same, with gamepad events going to `gamepads` first.
EventOutcome dispatchEvent(const SDL_Event& event, View& view, SdlGamepads& gamepads);

// What the view sees of a key event.
KeyEvent keyEventFor(const SDL_KeyboardEvent& key);

}  // namespace zb
