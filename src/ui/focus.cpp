// Play without a mouse: on every page the keys and the pad move a focus over the buttons the player
// sees there (and the Full Screen button), and press the focused one exactly as a click would. The
// focus shows only once the player navigates, so a player who never does sees the page as ever.
#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>

#include "engine/path.hpp"
#include "scene/game_scene.hpp"

namespace zb {
namespace {

// The mark: a rounded outline around the button's text, in design points at scale 1.
constexpr double kMarkPaddingX = 8;
constexpr double kMarkPaddingY = 5;
constexpr double kMarkCornerRadius = 6;
constexpr double kMarkLineWidth = 2;  // and never thinner, however small the window
constexpr double kMarkZ = 140;        // above every page and the HUD: it only outlines

// Holding Return or A on "-" or "+" repeats the press, in seconds of scene time.
constexpr double kRepeatDelay = 0.4;
constexpr double kRepeatInterval = 0.1;


double linearChannel(double c) { return c <= 0.04045 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4); }

double luminance(Color c) {
  return 0.2126 * linearChannel(c.r) + 0.7152 * linearChannel(c.g) + 0.0722 * linearChannel(c.b);
}

double contrast(Color a, Color b) {
  const double la = luminance(a);
  const double lb = luminance(b);
  return (std::max(la, lb) + 0.05) / (std::min(la, lb) + 0.05);
}

// `over` laid on `under` with its alpha, as the renderer blends.
Color blended(Color under, Color over) {
  const double a = over.a;
  return Color::rgba(under.r * (1 - a) + over.r * a, under.g * (1 - a) + over.g * a,
                     under.b * (1 - a) + over.b * a, 1);
}

// The middle of the text across, its baseline up: buttons of one row share the baseline whatever
// their glyphs.
Point centre(const LabelNode& button) { return {button.frame().midX(), button.position.y}; }

// Top to bottom, then left to right, as the page is read.
bool readsBefore(const LabelNode* a, const LabelNode* b) {
  const Point pa = centre(*a);
  const Point pb = centre(*b);
  if (pa.y != pb.y) return pa.y > pb.y;
  return pa.x < pb.x;
}

// How far `to` lies from `from` in the direction (dx, dy), as the pages are rows of buttons: up and
// down go to the nearest row that way, then to the nearest button in it; left and right stay in the
// row if they can, then go to the nearest button. Nothing if `to` is not that way at all.
std::optional<std::pair<double, double>> reachTowards(Point from, Point to, double dx, double dy) {
  const double along = (to.x - from.x) * dx + (to.y - from.y) * dy;
  if (along <= 0) return std::nullopt;
  const double sideways = std::abs((to.x - from.x) * dy - (to.y - from.y) * dx);
  if (dx != 0) return std::pair{sideways, along};
  return std::pair{along, sideways};
}

bool repeatsWhenHeld(const std::string& name) { return name == "btn_vol_down" || name == "btn_vol_up"; }

}  // namespace

std::vector<LabelNode*> GameScene::focusableButtons() const {
  std::vector<LabelNode*> buttons;
  switch (gameState) {
    case GameState::menu: buttons = {startButton.get(), settingsButton.get()}; break;
    case GameState::settings:
      buttons = {toggleFPSLabel.get(), musicToggleLabel.get(), volDownButton.get(), volUpButton.get(),
                 settingsBackButton.get()};
      break;
    case GameState::gameOver: buttons = {retryButton.get(), menuButton.get()}; break;
    case GameState::paused: buttons = {resumeButton.get(), restartButton().get(), pauseMenuButton.get()}; break;
    case GameState::playing: return {};
  }
  buttons.push_back(fullscreenButton.get());
  std::erase(buttons, nullptr);
  return buttons;
}

LabelNode* GameScene::focusedButton() const {
  for (LabelNode* button : focusableButtons()) {
    if (button->name == focusName_) return button;
  }
  return nullptr;
}

std::optional<std::string> GameScene::focusedButtonName() const {
  if (!focusShown_) return std::nullopt;
  return focusName_;
}

void GameScene::moveFocus(FocusMove move) {
  std::vector<LabelNode*> buttons = focusableButtons();
  if (buttons.empty()) return;
  stopButtonRepeat();
  LabelNode* current = focusShown_ ? focusedButton() : nullptr;
  // The first move on a page only shows the focus, on the page's first button.
  if (current == nullptr) {
    focusName_ = buttons.front()->name;
    focusShown_ = true;
    placeFocusMark();
    return;
  }
  std::stable_sort(buttons.begin(), buttons.end(), readsBefore);
  const auto at = std::find(buttons.begin(), buttons.end(), current) - buttons.begin();
  const auto count = static_cast<std::ptrdiff_t>(buttons.size());
  LabelNode* target = nullptr;
  if (move == FocusMove::next) target = buttons[static_cast<size_t>((at + 1) % count)];
  if (move == FocusMove::previous) target = buttons[static_cast<size_t>((at + count - 1) % count)];
  if (target == nullptr) {
    const double dx = move == FocusMove::left ? -1 : move == FocusMove::right ? 1 : 0;
    const double dy = move == FocusMove::down ? -1 : move == FocusMove::up ? 1 : 0;
    std::optional<std::pair<double, double>> best;
    for (LabelNode* candidate : buttons) {
      const auto reach = reachTowards(centre(*current), centre(*candidate), dx, dy);
      if (reach && (!best || *reach < *best)) {
        best = reach;
        target = candidate;
      }
    }
  }
  if (target != nullptr) focusName_ = target->name;
  placeFocusMark();
}

void GameScene::pressFocusedButton() {
  LabelNode* button = focusShown_ ? focusedButton() : nullptr;
  if (button == nullptr) {
    moveFocus(FocusMove::next);
    return;
  }
  const std::string name = button->name;
  const GameState before = gameState;
  pressButton(name);
  // As after a click: a press that starts or resumes a run also jumps.
  if (gameState == GameState::playing) requestJump();
  if (repeatsWhenHeld(name) && gameState == before) {
    repeatingButton_ = name;
    nextRepeatAt_ = currentTime() + kRepeatDelay;
  }
}

void GameScene::stopButtonRepeat() { repeatingButton_.clear(); }

void GameScene::repeatHeldButton(double now) {
  if (repeatingButton_.empty()) return;
  if (gameState != GameState::settings) {
    stopButtonRepeat();
    return;
  }
  while (now >= nextRepeatAt_ && !repeatingButton_.empty()) {
    nextRepeatAt_ += kRepeatInterval;
    pressButton(repeatingButton_);
  }
}

void GameScene::hideFocus() {
  focusShown_ = false;
  stopButtonRepeat();
  placeFocusMark();
}

void GameScene::placeFocusMark() {
  LabelNode* button = focusShown_ ? focusedButton() : nullptr;
  if (button == nullptr) {
    // Out of the tree rather than hidden: without navigation the node tree is exactly as it always was.
    if (focusMark_ && focusMark_->parent() != nullptr) focusMark_->removeFromParent();
    return;
  }
  if (!focusMark_) focusMark_ = std::make_shared<ShapeNode>();
  const double s = layoutScale;
  // Whole points, so that the line covers whole pixels at scale 1.
  const Rect text = button->frame();
  const double left = std::floor(text.minX() - kMarkPaddingX * s);
  const double bottom = std::floor(text.minY() - kMarkPaddingY * s);
  const double right = std::ceil(text.maxX() + kMarkPaddingX * s);
  const double top = std::ceil(text.maxY() + kMarkPaddingY * s);
  focusMark_->path = Path::roundedRect(Rect::make(left, bottom, right - left, top - bottom), kMarkCornerRadius * s);
  focusMark_->lineWidth = std::max(kMarkLineWidth, std::round(kMarkLineWidth * s));
  focusMark_->fillColor = Color::clear();
  focusMark_->zPosition = kMarkZ;
  // Black or white, whichever stands out more from the palette's sky under the page's dimming.
  const Color behind = dimBackground->hidden ? backgroundColor : blended(backgroundColor, dimBackground->fillColor);
  focusMark_->strokeColor = contrast(Color::black(), behind) >= contrast(Color::white(), behind) ? Color::black()
                                                                                               : Color::white();
  if (focusMark_->parent() == nullptr) uiLayer->addChild(focusMark_);
}

}  // namespace zb
