// The player's judgement as a small search over jump timings. From any moment at which the figure
// could take off, it can wait a frame, jump, or jump and jump again within the coyote time; the
// best of these is worked out backwards from the moment the last obstacle in sight has passed, so
// each choice already knows whether what follows it can still be survived.
#include "player/jump_planner.hpp"

#include <algorithm>
#include <limits>

#include "scene/game_scene.hpp"

namespace zb {

namespace {

// Room left between the figure's box and an outline, against rounding in the predicted motion.
constexpr double kClearance = 0.5;
// How far ahead the player looks, in frames; far more than an obstacle takes to cross the screen.
constexpr int64_t kMaxHorizon = 600;
constexpr int64_t kNeverHit = std::numeric_limits<int64_t>::max();

struct Span {
  double bottom;
  double top;
};

// What stands in the figure's way, frame by frame (frame 1 is the coming one): the vertical spans
// of the obstacles that overlap the figure's column in that frame.
class Threats {
 public:
  explicit Threats(const Situation& situation);

  // The first frame after which nothing in sight can reach the figure any more.
  int64_t horizon() const { return horizon_; }
  bool clear(int64_t frame, double altitude, double height) const;
  bool clearOnGround(int64_t frame) const {
    return clear(frame, 0, kPlayerHeightStanding) || clear(frame, 0, kPlayerHeightDucking);
  }
  bool anyBetween(int64_t first, int64_t last) const;

 private:
  std::vector<size_t> firstSpan_;  // frame f's spans are [firstSpan_[f - 1], firstSpan_[f])
  std::vector<Span> spans_;
  int64_t horizon_ = 0;
};

Threats::Threats(const Situation& situation) {
  if (situation.obstacles.empty()) return;
  const double left = situation.playerX - kPlayerWidth * 0.5 - kClearance;
  const double right = situation.playerX + kPlayerWidth * 0.5 + kClearance;
  double speed = situation.speed;
  double travelled = 0;
  firstSpan_.push_back(0);
  for (int64_t frame = 1; frame <= kMaxHorizon; ++frame) {
    travelled += speed;
    bool anyAhead = false;
    for (const Sighting& seen : situation.obstacles) {
      const double minX = seen.minX - travelled;
      const double maxX = seen.maxX - travelled;
      if (maxX > left) anyAhead = true;
      if (minX < right && maxX > left) spans_.push_back({seen.bottom - kClearance, seen.top + kClearance});
    }
    firstSpan_.push_back(spans_.size());
    horizon_ = frame;
    if (!anyAhead) break;
    // The game speeds up after the frame whose score is a multiple of the step.
    if ((situation.score + frame) % situation.speedUpEvery == 0) speed += situation.speedUp;
  }
}

bool Threats::clear(int64_t frame, double altitude, double height) const {
  if (frame < 1 || frame > horizon_) return true;
  for (size_t i = firstSpan_[frame - 1]; i < firstSpan_[frame]; ++i) {
    if (spans_[i].bottom < altitude + height && spans_[i].top > altitude) return false;
  }
  return true;
}

bool Threats::anyBetween(int64_t first, int64_t last) const {
  for (int64_t frame = std::max<int64_t>(first, 1); frame <= std::min(last, horizon_); ++frame) {
    if (firstSpan_[frame] > firstSpan_[frame - 1]) return true;
  }
  return false;
}

// The feet's altitude in each frame of a flight, up to the frame before the landing. Presses are
// offsets from the flight's start.
std::vector<double> fly(Body body, const std::vector<int64_t>& presses) {
  std::vector<double> altitudes;
  for (int64_t frame = 0; frame < kMaxHorizon; ++frame) {
    stepBody(body, std::find(presses.begin(), presses.end(), frame) != presses.end());
    if (isGrounded(body) && body.velocityY <= 0) break;
    altitudes.push_back(body.footAltitude);
  }
  return altitudes;
}

enum class Move { wait, jump, doubleJump };
struct Choice {
  Move move = Move::wait;
  int64_t second = 0;  // frames from the take-off to the second press of a double jump
};

class Search {
 public:
  explicit Search(const Threats& threats);
  // Frame of the first hit when the figure can take off before frame d + 1; kNeverHit for none.
  int64_t survival(int64_t d) const { return d >= threats_.horizon() ? kNeverHit : best_[d]; }
  int64_t survival(int64_t d, const std::vector<double>& flight) const;
  Choice choose(int64_t d) const;
  // Follows the choices from d to the horizon, appending the key presses to the plan.
  void follow(int64_t d, Plan& plan) const;

 private:
  int64_t waitSurvival(int64_t d) const { return threats_.clearOnGround(d + 1) ? survival(d + 1) : d + 1; }
  int64_t doubleSurvival(int64_t d, int64_t second) const { return survival(d, doubles_[second - 1]); }

  const Threats& threats_;
  std::vector<double> single_;
  std::vector<std::vector<double>> doubles_;  // by the frame of the second press, 1 to the coyote time
  std::vector<int64_t> best_;
  std::vector<bool> quietAfter_;  // nothing from frame d + 1 on needs the figure off the ground
};

Search::Search(const Threats& threats) : threats_(threats), single_(fly(Body{}, {0})) {
  for (int64_t second = 1; second <= kJumpTimingFrames; ++second) doubles_.push_back(fly(Body{}, {0, second}));
  const int64_t horizon = threats.horizon();
  best_.assign(static_cast<size_t>(horizon), kNeverHit);
  quietAfter_.assign(static_cast<size_t>(horizon) + 1, true);
  for (int64_t d = horizon - 1; d >= 0; --d) {
    quietAfter_[d] = quietAfter_[d + 1] && threats.clearOnGround(d + 1);
    int64_t best = std::max(waitSurvival(d), survival(d, single_));
    // A double jump is only worth working out when a single one will not do.
    for (int64_t second = 1; best != kNeverHit && second <= kJumpTimingFrames; ++second) {
      best = std::max(best, doubleSurvival(d, second));
    }
    best_[d] = best;
  }
}

int64_t Search::survival(int64_t d, const std::vector<double>& flight) const {
  for (size_t i = 0; i < flight.size(); ++i) {
    const int64_t frame = d + 1 + static_cast<int64_t>(i);
    if (!threats_.clear(frame, flight[i], kPlayerHeightStanding)) return frame;
  }
  return survival(d + static_cast<int64_t>(flight.size()));
}

// Stay down while nothing needs a jump; take off at the first moment from which a jump clears what
// is coming and everything after it can still be cleared, so that the figure lands as early as it
// can; double-jump only when nothing else clears; and when nothing clears, put the hit off longest.
Choice Search::choose(int64_t d) const {
  if (quietAfter_[d]) return {};
  const int64_t single = survival(d, single_);
  const auto singleFrames = static_cast<int64_t>(single_.size());
  if (single == kNeverHit && threats_.anyBetween(d + 1, d + singleFrames)) return {Move::jump};
  const int64_t wait = waitSurvival(d);
  if (wait == kNeverHit) return {};
  for (int64_t second = 1; second <= kJumpTimingFrames; ++second) {
    if (doubleSurvival(d, second) == kNeverHit) return {Move::doubleJump, second};
  }
  Choice choice;
  int64_t longest = wait;
  if (single > longest) {
    choice = {Move::jump};
    longest = single;
  }
  for (int64_t second = 1; second <= kJumpTimingFrames; ++second) {
    if (doubleSurvival(d, second) > longest) {
      choice = {Move::doubleJump, second};
      longest = doubleSurvival(d, second);
    }
  }
  return choice;
}

void Search::follow(int64_t d, Plan& plan) const {
  while (d < threats_.horizon()) {
    const Choice choice = choose(d);
    switch (choice.move) {
      case Move::wait:
        if (!threats_.clear(d + 1, 0, kPlayerHeightStanding)) plan.ducks.push_back(d);
        d += 1;
        break;
      case Move::jump:
        plan.jumps.push_back(d);
        d += static_cast<int64_t>(single_.size());
        break;
      case Move::doubleJump:
        plan.jumps.push_back(d);
        plan.jumps.push_back(d + choice.second);
        d += static_cast<int64_t>(doubles_[choice.second - 1].size());
        break;
    }
  }
}

bool isAtRest(const Body& body) { return isGrounded(body) && body.velocityY <= 0 && body.bufferedJumpFrames == 0; }

// Already in the air: carry on, or press again while the coyote time allows, whichever clears.
// Returns the frame from which the figure can take off again.
int64_t finishFlight(const Body& body, const Search& search, Plan& plan) {
  std::vector<double> flight = fly(body, {});
  int64_t longest = search.survival(0, flight);
  int64_t bestPress = -1;
  for (int64_t press = 0; longest != kNeverHit && body.framesSinceLeftGround + press + 1 <= kJumpTimingFrames; ++press) {
    std::vector<double> pressed = fly(body, {press});
    const int64_t survival = search.survival(0, pressed);
    if (survival > longest) {
      longest = survival;
      bestPress = press;
      flight = std::move(pressed);
    }
  }
  if (bestPress >= 0) plan.jumps.push_back(bestPress);
  plan.clears = longest == kNeverHit;
  return static_cast<int64_t>(flight.size());
}

}  // namespace

void stepBody(Body& body, bool pressJump) {
  if (pressJump) body.bufferedJumpFrames = kJumpTimingFrames;
  stepRunnerBody(body, kJumpTimingFrames);
}

Plan planJumps(const Situation& situation) {
  const Threats threats(situation);
  const Search search(threats);
  Plan plan;
  plan.horizon = threats.horizon();
  int64_t takeOff = 0;
  if (isAtRest(situation.body)) {
    plan.clears = search.survival(0) == kNeverHit;
  } else {
    takeOff = finishFlight(situation.body, search, plan);
  }
  search.follow(takeOff, plan);
  return plan;
}

}  // namespace zb
