// The computed texts of the pages: the settings read-outs, the game-over lines with their taunt,
// and the full-screen button's title with the two window notifications that keep it right.
#include <charconv>
#include <string>

#include "engine/checked.hpp"
#include "engine/quoted_text.hpp"
#include "engine/view.hpp"
#include "scene/game_scene.hpp"
#include "settings/preference_keys.hpp"

namespace zb {
namespace {

constexpr const char* kNoTauntText = "Press Space to Retry";
constexpr float kPercent = 100.0f;

const char* onOff(bool value) { return value ? "On" : "Off"; }

// The stop that follows is a bare trap with nothing on standard error; this line tells the player
// which stored value caused it and where to mend it.
void reportUnshowableVolume(float volume, const Preferences& store) {
  char number[64];
  const auto end = std::to_chars(number, number + sizeof number, volume).ptr;
  sayOnStandardError("cannot show the music volume " + std::string(number, end) + " stored under " +
                     std::string(kMusicVolumeKey) + " in " + quotedForMessage(store.whereKept()) + "; stopping");
}

}  // namespace

void GameScene::refreshSettingsTexts() {
  toggleFPSLabel->setText(std::string("Show FPS: ") + onOff(settingShowFPS));
  musicToggleLabel->setText(std::string("Music: ") + onOff(settingMusicEnabled));
  // The product is taken in single precision and truncated, so a volume just under 0.8 reads 79.
  // A foreign value from the store (NaN, infinite, huge) stops the program rather than lying.
  const float percent = settingMusicVolume * kPercent;
  if (!truncatesToInt64(static_cast<double>(percent))) {
    reportUnshowableVolume(settingMusicVolume, *services().preferences);
  }
  const int64_t shown = checkedTruncate(static_cast<double>(percent));
  volumeLabel->setText("Volume: " + std::to_string(shown) + "%");
  placeFocusMark();  // a toggle's text may have grown or shrunk under it
}

void GameScene::updateGameOverOverlay() {
  goScore->setText("Score: " + std::to_string(score));
  // The in-memory best alone; unlike the HUD, the store is not consulted here.
  goHigh->setText("High: " + std::to_string(highScore));
  if (taunts.empty()) {
    tauntLabel->setText(kNoTauntText);
  } else {
    tauntLabel->setText(taunts[random().uniformIndex(taunts.size())]);
  }
}

void GameScene::updateFullscreenButtonTitle() {
  Window* window = view() ? view()->window() : nullptr;
  const bool fullScreen = window && window->isFullScreen();
  fullscreenButton->setText(fullScreen ? "Exit Full Screen" : "Full Screen");
  placeFocusMark();
}

void GameScene::windowDidEnterFullScreen() { updateFullscreenButtonTitle(); }

void GameScene::windowDidExitFullScreen() { updateFullscreenButtonTitle(); }

}  // namespace zb
