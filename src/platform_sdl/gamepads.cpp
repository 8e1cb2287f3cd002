#include "platform_sdl/gamepads.hpp"

#include <SDL.h>

#include <algorithm>

namespace zb {

namespace {

// SDL reports stick positions as 16-bit numbers; the view wants -1 to 1.
constexpr double kAxisFullScale = 32767.0;

}  // namespace

SdlGamepads::SdlGamepads() : started_(SDL_InitSubSystem(SDL_INIT_GAMECONTROLLER) == 0) {}

SdlGamepads::~SdlGamepads() {
  for (auto& [id, controller] : open_) SDL_GameControllerClose(controller);
  if (started_) SDL_QuitSubSystem(SDL_INIT_GAMECONTROLLER);
}

void SdlGamepads::add(int deviceIndex, View& view) {
  SDL_GameController* controller = SDL_GameControllerOpen(deviceIndex);
  if (controller == nullptr) return;
  const SDL_JoystickID id = SDL_JoystickInstanceID(SDL_GameControllerGetJoystick(controller));
  // SDL may announce a pad twice (once for the pads present at start, once as it settles).
  if (open_.contains(id)) {
    SDL_GameControllerClose(controller);
    return;
  }
  if (!view.gamepadAdded(id)) {
    SDL_GameControllerClose(controller);
    return;
  }
  open_[id] = controller;
}

void SdlGamepads::remove(SDL_JoystickID id, View& view) {
  auto it = open_.find(id);
  if (it == open_.end()) return;
  SDL_GameControllerClose(it->second);
  open_.erase(it);
  view.gamepadRemoved(id);
}

bool SdlGamepads::handle(const SDL_Event& event, View& view) {
  switch (event.type) {
    case SDL_CONTROLLERDEVICEADDED:
      add(event.cdevice.which, view);  // a device index, not yet an instance id
      return true;
    case SDL_CONTROLLERDEVICEREMOVED:
      remove(event.cdevice.which, view);
      return true;
    case SDL_CONTROLLERBUTTONDOWN:
    case SDL_CONTROLLERBUTTONUP: {
      // Buttons past the common layout (paddles, touchpad, share) do nothing in the game.
      if (event.cbutton.button >= kGamepadButtonCount) return true;
      const auto button = static_cast<GamepadButton>(event.cbutton.button);
      if (event.type == SDL_CONTROLLERBUTTONDOWN) {
        view.gamepadButtonDown(event.cbutton.which, button);
      } else {
        view.gamepadButtonUp(event.cbutton.which, button);
      }
      return true;
    }
    case SDL_CONTROLLERAXISMOTION:
      if (event.caxis.axis < kGamepadAxisCount) {
        const double value = std::clamp(event.caxis.value / kAxisFullScale, -1.0, 1.0);
        view.gamepadAxisMoved(event.caxis.which, static_cast<GamepadAxis>(event.caxis.axis), value);
      }
      return true;
    default:
      return false;
  }
}

}  // namespace zb
