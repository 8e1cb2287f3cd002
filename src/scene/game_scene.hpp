#pragma once
// The one scene that owns the whole game: every piece of game state is a field here, in a fixed
// declaration order, and the game's work is done by small member functions that live in the folder
// of their subsystem (scene/, gameplay/, scenery/, audio/, settings/, ui/).
#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "engine/audio_node.hpp"
#include "engine/color.hpp"
#include "engine/label_node.hpp"
#include "engine/preferences.hpp"
#include "engine/resources.hpp"
#include "engine/scene.hpp"
#include "engine/shape_node.hpp"
#include "gameplay/runner_body.hpp"
#include "settings/comfort_options.hpp"

namespace zb {

// Numbers that both a field default and a rule use: one constant each so they cannot drift apart.
inline constexpr double kGravity = -0.6;
inline constexpr double kJumpVelocity = 12.0;
inline constexpr double kPlayerWidth = 24.0;
inline constexpr double kPlayerHeightStanding = 60.0;
inline constexpr double kPlayerHeightDucking = 36.0;
inline constexpr double kGroundHeightFromBottom = 50.0;
inline constexpr double kGroundedEpsilon = 0.0001;
inline constexpr int64_t kJumpTimingFrames = 9;  // both the coyote time and the jump buffer
inline constexpr int64_t kLongAirborneFrames = 9999;
inline constexpr double kStartObstacleSpeed = 4.0;
inline constexpr int64_t kStartSpawnIntervalMin = 72;
inline constexpr int64_t kStartSpawnIntervalMax = 150;
inline constexpr int64_t kPaletteChangePoints = 350;
inline constexpr float kDefaultMusicVolume = 0.6f;

// What the scene uses of the outside world besides its view: the preferences store and where sounds
// are looked up. The defaults are a private in-memory store and no sound folders at all.
struct GameServices {
  std::shared_ptr<Preferences> preferences = std::make_shared<MemoryPreferences>();
  ResourceBundle bundle;
  // The fixed fallback folder (with a "Babylaughs" subfolder for the laughs); empty means none.
  std::filesystem::path fallbackFolder;
  // The desktop asked for less motion; only consulted when the store has no word on it.
  bool desktopRequestsReducedMotion = false;
};

class GameScene : public Scene {
 public:
  enum class GameState : uint8_t { menu, playing, gameOver, settings, paused };
  enum class ObstacleType { boxSmall, boxMedium, boxLarge, barrel, planeHigh, planeMedium };
  enum class PlaneAltitude { high, medium };

  class ObstacleNode : public ShapeNode {
   public:
    ObstacleType obstacleType = ObstacleType::boxSmall;
  };
  using ObstacleNodePtr = std::shared_ptr<ObstacleNode>;

  struct Palette {
    Color bg;
    Color primary;
    Color secondary;
  };

  GameScene();
  explicit GameScene(Size size);
  ~GameScene() override;

  // Must be called before the scene is presented; the services are read from attachment on.
  void setServices(GameServices services) { services_ = std::move(services); }
  GameServices& services() { return services_; }

  // ---- Fields, in declaration order -------------------------------------------------------------
  GameState gameState = GameState::menu;
  std::shared_ptr<Node> playerContainer;
  ShapeNodePtr playerHead;
  ShapeNodePtr playerBody;
  ShapeNodePtr playerArmLeft;
  ShapeNodePtr playerArmRight;
  ShapeNodePtr playerLegLeft;
  ShapeNodePtr playerLegRight;
  bool isDucking = false;
  double playerFootAltitude = 0;
  double playerVelocityY = 0;
  // The five physics fields below are read by nothing: the step uses the constants, so the dump
  // shows the tuning without a stray write being able to change how the figure moves.
  double gravity = kGravity;
  double jumpVelocity = kJumpVelocity;
  double playerWidth = kPlayerWidth;
  double playerHeightStanding = kPlayerHeightStanding;
  double playerHeightDucking = kPlayerHeightDucking;
  int64_t runAnimationFrameIndex = 0;
  int64_t runAnimationFrameCounter = 0;
  double groundHeightFromBottom = kGroundHeightFromBottom;
  ShapeNodePtr groundLine;
  std::shared_ptr<Node> backgroundGroup;
  std::shared_ptr<Node> cloudGroup;
  // Always empty, the sky has no stars; kept (and cleared with the scenery) because the node count on
  // screen includes it and the dump reports its children as starCount.
  std::shared_ptr<Node> starGroup;
  std::shared_ptr<Node> buildingGroup;
  double layoutScale = 1.0;
  bool isPausedManually = false;  // written, never read: only the player pauses, yet the dump reports it
  std::optional<Point> lastCollisionPoint;
  std::vector<ObstacleNodePtr> obstacleNodes;
  double obstacleSpeed = kStartObstacleSpeed;
  int64_t spawnTimerFrames = 0;
  int64_t spawnIntervalMin = kStartSpawnIntervalMin;
  int64_t spawnIntervalMax = kStartSpawnIntervalMax;
  std::map<ObstacleType, std::vector<ObstacleNodePtr>> obstaclePool;
  int64_t score = 0;
  int64_t highScore = 0;
  LabelNodePtr scoreLabel;
  LabelNodePtr highScoreLabel;
  LabelNodePtr pauseButton;
  std::shared_ptr<Node> uiLayer;
  std::shared_ptr<Node> menuOverlay;
  std::shared_ptr<Node> settingsOverlay;
  std::shared_ptr<Node> gameOverOverlay;
  std::shared_ptr<Node> pauseOverlay;
  ShapeNodePtr dimBackground;
  LabelNodePtr titleLabel;
  LabelNodePtr subtitleLabel;
  LabelNodePtr startButton;
  LabelNodePtr settingsButton;
  LabelNodePtr settingsTitle;
  LabelNodePtr toggleFPSLabel;
  LabelNodePtr musicToggleLabel;
  LabelNodePtr volumeLabel;
  LabelNodePtr volDownButton;
  LabelNodePtr volUpButton;
  LabelNodePtr settingsBackButton;
  LabelNodePtr goTitle;
  LabelNodePtr goScore;
  LabelNodePtr goHigh;
  LabelNodePtr retryButton;
  LabelNodePtr menuButton;
  LabelNodePtr tauntLabel;
  std::vector<std::string> taunts;
  LabelNodePtr fullscreenButton;
  LabelNodePtr pauseTitle;
  LabelNodePtr resumeButton;
  LabelNodePtr pauseMenuButton;
  int64_t lastPaletteChangeAtScore = 0;
  int64_t paletteChangePoints = kPaletteChangePoints;
  int64_t currentPaletteIndex = 0;
  Color currentPrimaryColor = Color::black();
  Color currentSecondaryColor = Color::darkGray();
  bool settingShowFPS = false;
  bool settingMusicEnabled = true;
  float settingMusicVolume = kDefaultMusicVolume;
  AudioNodePtr backgroundMusicNode;
  std::vector<std::string> babyLaughResourceNames;
  int64_t lastBabyLaughIndex = -1;
  std::vector<Palette> vibrantPalettes;
  int64_t coyoteTimeFrames = kJumpTimingFrames;
  int64_t jumpBufferFrames = kJumpTimingFrames;
  int64_t framesSinceLeftGround = kLongAirborneFrames;
  int64_t bufferedJumpFramesRemaining = 0;

  // ---- Platform hooks (scene/) -------------------------------------------------------------------
  void didMoveToView(View& view) override;
  void willMoveFromView(View& view) override;
  void update(double currentTime) override;
  void didChangeSize(Size oldSize) override;
  void keyDown(const KeyEvent& event) override;
  void keyUp(const KeyEvent& event) override;
  void mouseDown(const MouseEvent& event) override;
  void mouseMoved() override;
  void gamepadButtonDown(GamepadButton button) override;
  void gamepadButtonUp(GamepadButton button) override;
  void gamepadAxisMoved(GamepadAxis axis, double value) override;
  void gamepadDisconnected() override;
  void windowDidLoseFocus() override;

  // ---- Game flow (scene/) ------------------------------------------------------------------------
  void setupScene();
  void startGame();
  void endRun();
  void showGameOver();
  void showMenu();
  void openSettings();
  void pauseGame();
  void resumeGame();

  // ---- Input (scene/) ----------------------------------------------------------------------------
  void handleClick(Point pointInUILayer);
  void requestJump();
  void toggleFullScreen();
  void toggleMusic();
  void volumeDown();
  void volumeUp();
  void toggleShowFPS();
  // What a button does when clicked, by its node name; nothing for a name no button has.
  void pressButton(const std::string& name);
  // What Space, Down, P and Escape do, whichever key or gamepad button asked for it. `source` tells the
  // holders of a duck apart (a key code, or one of the pad sources below), so that a duck held by
  // several ends only when the last lets go.
  void pressAction(InputAction action, int source = kNoSource);
  void releaseAction(InputAction action, int source = kNoSource);
  static constexpr int kNoSource = -1;
  static constexpr int kPadButtonSource = 0x10000;  // plus the button's number
  static constexpr int kStickSource = 0x20000;

  // ---- Focus of keys and pad on the pages (ui/focus.cpp) -----------------------------------------
  // The focus stays hidden on a page until the first move, and hides again at a mouse move or click.
  enum class FocusMove : uint8_t { next, previous, up, down, left, right };
  void moveFocus(FocusMove move);
  // Presses the focused button as a click on it would; with no focus shown it only shows it.
  void pressFocusedButton();
  void stopButtonRepeat();
  void hideFocus();
  // The node name of the focused button, or nothing while no focus is shown.
  std::optional<std::string> focusedButtonName() const;

  // ---- Player (gameplay/) ------------------------------------------------------------------------
  void updatePlayer();
  void setupPlayer();
  void applyRunPose(int64_t index);
  void applyDuckPose(double height);
  void applyAirPose();

  // ---- Obstacles, collisions, score (gameplay/) --------------------------------------------------
  void spawnAndUpdateObstacles();
  void spawnObstacle();
  ObstacleNodePtr dequeueObstacle(ObstacleType type);
  ObstacleNodePtr barrelObstacle(double radius);
  ObstacleNodePtr planeObstacle(PlaneAltitude altitude);
  ObstacleType randomObstacleType(int64_t stage);
  void checkCollisions();
  void incrementScoreAndDifficulty();

  // ---- Scenery (scenery/) ------------------------------------------------------------------------
  void setupBackground();
  void setupGround();
  void updateBackground();
  ShapeNodePtr cloudNode();
  ShapeNodePtr line(Point from, Point to);
  void maybeSpawnBird();
  std::vector<ShapeNodePtr> birds() const;  // held by no field: found by their depth
  std::vector<ShapeNodePtr> explosionDots() const;  // likewise
  void updatePaletteIfNeeded();
  void applyPalette(int64_t index);
  void setAllColors(Color primary, Color secondary);
  void spawnExplosionEffect();

  // ---- Sound and settings (audio/, settings/) ----------------------------------------------------
  void buildMusicNode();
  void fadeMusic(float volume, double duration);
  void playSFX(const std::string& resource, const std::optional<std::filesystem::path>& absolutePath);
  void playRandomBabyLaugh();
  std::filesystem::path fallbackPath(const std::string& file) const;
  int64_t storedHighScore();
  void loadSettings();
  void saveSettings();
  void loadComfortOptions();
  const ComfortOptions& comfortOptions() const { return comfort_; }

  // ---- Interface (ui/) ---------------------------------------------------------------------------
  // The pause page's restart button is held by no field, only by its name.
  static constexpr const char* kRestartButtonName = "btn_pause_restart";
  LabelNodePtr restartButton() const;
  void setupUI();
  LabelNodePtr buttonLabel(const std::string& text, const std::string& name);
  void updateScoreLabels();
  void refreshSettingsTexts();
  void updateGameOverOverlay();
  void updateFullscreenButtonTitle();
  void windowDidEnterFullScreen();
  void windowDidExitFullScreen();
  void updateLayout();
  void layoutMenu();
  void layoutSettings();
  void layoutGameOver();

 private:
  void initializeFields();
  // Plain shapes (no obstacles) directly in the scene at depth z: decoration no field holds.
  std::vector<ShapeNodePtr> decorationsAt(double z) const;  // scene/game_scene.cpp

  // ---- Private helpers (scene/, gameplay/) -------------------------------------------------------
  void registerForFullScreenNotifications(View& view);  // scene/lifecycle.cpp
  void hideCursorUntilMouseMoves();                      // scene/game_flow.cpp
  void unhideCursor();                                   // scene/game_flow.cpp
  // One page over the dimmed run without the pause button, or with none the bare run.
  void showPage(Node* page);                             // scene/game_flow.cpp
  void playJumpSound();                                  // scene/input.cpp
  void playClickSound();                                 // scene/input.cpp
  std::string buttonNameAt(Point pointInUILayer) const;  // scene/input.cpp
  std::vector<LabelNode*> focusableButtons() const;      // ui/focus.cpp
  LabelNode* focusedButton() const;                      // ui/focus.cpp
  void placeFocusMark();                                 // ui/focus.cpp
  void repeatHeldButton(double currentTime);             // ui/focus.cpp
  RunnerBody runnerBody() const;                         // gameplay/player_physics.cpp
  bool isPlayerGrounded() const;                         // gameplay/player_physics.cpp
  double currentPlayerHeight() const;                    // gameplay/player_physics.cpp
  void advanceRunCycle();                                // gameplay/player_physics.cpp
  double playerHomeX() const;                            // gameplay/rig.cpp
  ObstacleNodePtr buildObstacle(ObstacleType type);      // gameplay/obstacles.cpp
  void dropLiveObstacles();                              // gameplay/obstacles.cpp
  void raiseDifficulty();                                // gameplay/scoring.cpp

  GameServices services_;
  ComfortOptions comfort_;
  std::set<int> duckSources_;  // what holds the duck down now
  // Where the left stick points, -1, 0 or 1 on each axis: only a crossing of half way counts.
  int stickX_ = 0;
  int stickY_ = 0;
  std::string focusName_;  // the page's focused button, by node name
  bool focusShown_ = false;
  ShapeNodePtr focusMark_;  // in uiLayer only while the focus is shown
  std::string repeatingButton_;  // "-" or "+" held down by Return or A
  double nextRepeatAt_ = 0;
};

// Case names as the game's texts and dumps use them ("boxSmall", "menu", ...).
const char* toString(GameScene::ObstacleType type);
const char* toString(GameScene::GameState state);

}  // namespace zb
