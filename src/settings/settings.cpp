// The best score and the three settings in the preferences store. Settings are read once on
// attachment and written together only when asked; the store decides when they reach the disk.
#include "scene/game_scene.hpp"
#include "settings/preference_keys.hpp"

namespace zb {

// Read, never written by the game: a best score in the store comes from elsewhere and only shows.
int64_t GameScene::storedHighScore() { return services().preferences->integerForKey(kHighScoreKey); }

void GameScene::loadSettings() {
  Preferences& store = *services().preferences;
  // Presence first, so that a stored false or 0 wins over the field's default.
  if (store.objectForKey(kShowFPSKey)) settingShowFPS = store.boolForKey(kShowFPSKey);
  if (store.objectForKey(kMusicEnabledKey)) settingMusicEnabled = store.boolForKey(kMusicEnabledKey);
  if (store.objectForKey(kMusicVolumeKey)) settingMusicVolume = store.floatForKey(kMusicVolumeKey);
}

void GameScene::saveSettings() {
  Preferences& store = *services().preferences;
  store.setBool(settingShowFPS, kShowFPSKey);
  store.setBool(settingMusicEnabled, kMusicEnabledKey);
  store.setFloat(settingMusicVolume, kMusicVolumeKey);
}

}  // namespace zb
