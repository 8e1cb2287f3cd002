#pragma once
// Gamepads through SDL's game-controller layer, which knows the button layout of common pads and
// reads extra layouts from the file named by SDL_GAMECONTROLLERCONFIG_FILE. Pads come and go while
// the game runs; SDL announces the ones connected before start as arrivals too. Each arrival is opened
// so that its buttons report, and is known to the view by SDL's instance id.
#include <SDL_events.h>
#include <SDL_gamecontroller.h>

#include <map>
#include <memory>

#include "engine/view.hpp"

namespace zb {

class SdlGamepads {
 public:
  // Starts SDL's game-controller layer; without it (no joystick support) there are simply no pads.
  SdlGamepads();
  ~SdlGamepads();
  SdlGamepads(const SdlGamepads&) = delete;
  SdlGamepads& operator=(const SdlGamepads&) = delete;

  // Hands a controller event to the view; false for any other event.
  bool handle(const SDL_Event& event, View& view);

 private:
  void add(int deviceIndex, View& view);
  void remove(SDL_JoystickID id, View& view);

  bool started_ = false;
  std::map<SDL_JoystickID, SDL_GameController*> open_;
};

}  // namespace zb
