#include "engine/action.hpp"

#include <algorithm>
#include <limits>
#include <utility>

#include "engine/audio_node.hpp"
#include "engine/scene.hpp"
#include "engine/view.hpp"

namespace zb {

namespace {

// Accumulated frame times fall a hair short of round durations (27 steps of 1/60 s sum to a little
// less than 0.45 s); a timed action counts as finished within this margin.
constexpr double kTimeTolerance = 1e-9;

// A timed action: subclasses map the normalised time t in [0, 1] onto the node.
class TimedRun : public Action::Run {
 public:
  explicit TimedRun(double duration) : duration_(std::max(duration, 0.0)) {}

  double step(Node& target, double dt) final {
    elapsed_ += dt;
    bool done = elapsed_ >= duration_ - kTimeTolerance;
    update(target, done ? 1.0 : elapsed_ / duration_);
    return done ? std::max(elapsed_ - duration_, 0.0) : -1.0;
  }

 protected:
  virtual void update(Node& target, double t) = 0;

 private:
  double duration_;
  double elapsed_ = 0;
};

class TimedAction : public Action {
 public:
  explicit TimedAction(double duration) : duration_(std::max(duration, 0.0)) {}
  double duration() const override { return duration_; }

 protected:
  double duration_;
};

// The description of a timed action whose runs take one parameter besides the time: each start makes
// a fresh run, so one description can run on many nodes at once.
template <class RunType, class Param, bool kRunsWhilePaused = false>
class TimedActionWith final : public TimedAction {
 public:
  TimedActionWith(Param param, double duration) : TimedAction(duration), param_(param) {}
  bool runsWhilePaused() const override { return kRunsWhilePaused; }
  std::unique_ptr<Run> start(Node& target) const override {
    return std::make_unique<RunType>(target, param_, duration_);
  }

 private:
  Param param_;
};

// The arithmetic of the additive runs, on single numbers and on points.
Point plus(Point a, Point b) { return {a.x + b.x, a.y + b.y}; }
Point minus(Point a, Point b) { return {a.x - b.x, a.y - b.y}; }
Point scaled(Point a, double t) { return {a.x * t, a.y * t}; }
double plus(double a, double b) { return a + b; }
double minus(double a, double b) { return a - b; }
double scaled(double a, double t) { return a * t; }

// Changes a node's property by a total amount, applying only the change since its last step so that
// moves (or turns) run together add up. While nothing else writes the property it is set to
// start + total * t, so the action ends exactly on its target.
template <class Value, Value Node::*kProperty>
class ChangeByRun final : public TimedRun {
 public:
  ChangeByRun(const Node& target, Value total, double duration)
      : TimedRun(duration), total_(total), start_(target.*kProperty), lastWritten_(target.*kProperty) {}

 protected:
  void update(Node& target, double t) override {
    Value& property = target.*kProperty;
    const Value applied = scaled(total_, t);
    if (property == lastWritten_) {
      property = plus(start_, applied);
    } else {
      property = plus(property, minus(applied, applied_));
      start_ = minus(property, applied);
    }
    applied_ = applied;
    lastWritten_ = property;
  }

 private:
  Value total_;
  Value start_;
  Value lastWritten_;
  Value applied_{};
};

using MoveByRun = ChangeByRun<Point, &Node::position>;
using RotateByRun = ChangeByRun<double, &Node::zRotation>;

class MoveToXRun final : public TimedRun {
 public:
  MoveToXRun(const Node& target, double x, double duration) : TimedRun(duration), from_(target.position.x), to_(x) {}

 protected:
  void update(Node& target, double t) override { target.position.x = t >= 1 ? to_ : from_ + (to_ - from_) * t; }

 private:
  double from_;
  double to_;
};

class FadeOutRun final : public TimedRun {
 public:
  FadeOutRun(const Node& target, double duration) : TimedRun(duration), from_(target.alpha) {}

 protected:
  void update(Node& target, double t) override { target.alpha = t >= 1 ? 0.0 : from_ * (1 - t); }

 private:
  double from_;
};

class FadeOut final : public TimedAction {
 public:
  using TimedAction::TimedAction;
  std::unique_ptr<Run> start(Node& target) const override { return std::make_unique<FadeOutRun>(target, duration_); }
};

class ChangeVolumeRun final : public TimedRun {
 public:
  ChangeVolumeRun(Node& target, float volume, double duration)
      : TimedRun(duration), audio_(dynamic_cast<AudioNode*>(&target)), to_(volume) {
    if (audio_) from_ = audio_->volume();
  }

 protected:
  void update(Node&, double t) override {
    if (audio_) audio_->setVolume(t >= 1 ? to_ : static_cast<float>(from_ + (to_ - from_) * t));
  }

 private:
  AudioNode* audio_;
  float from_ = 0;
  float to_;
};

// An action that does its work once, at its first step, and passes all of that step's time on.
class InstantRun final : public Action::Run {
 public:
  explicit InstantRun(std::function<void(Node&)> effect) : effect_(std::move(effect)) {}
  double step(Node& target, double dt) override {
    effect_(target);
    return dt;
  }

 private:
  std::function<void(Node&)> effect_;
};

class PlaySoundFile final : public Action {
 public:
  explicit PlaySoundFile(std::filesystem::path file) : file_(std::move(file)) {}
  double duration() const override { return 0; }
  std::unique_ptr<Run> start(Node&) const override {
    return std::make_unique<InstantRun>([file = file_](Node& target) {
      Scene* scene = target.scene();
      if (scene && scene->view()) scene->view()->soundOutput().playEffect(file);
    });
  }

 private:
  std::filesystem::path file_;
};

class RemoveFromParent final : public Action {
 public:
  double duration() const override { return 0; }
  std::unique_ptr<Run> start(Node&) const override {
    return std::make_unique<InstantRun>([](Node& target) { target.removeFromParent(); });
  }
};

// Runs its parts one after another; time left over when a part finishes goes on into the next part
// within the same step.
class SequenceRun final : public Action::Run {
 public:
  explicit SequenceRun(const std::vector<ActionPtr>& parts) : parts_(parts) {}

  double step(Node& target, double dt) override {
    while (index_ < parts_.size()) {
      if (!current_) current_ = parts_[index_]->start(target);
      double left = current_->step(target, dt);
      if (left < 0) return -1.0;
      current_.reset();
      ++index_;
      dt = left;
    }
    return dt;
  }

 private:
  const std::vector<ActionPtr>& parts_;
  std::size_t index_ = 0;
  std::unique_ptr<Action::Run> current_;
};

class Sequence final : public Action {
 public:
  explicit Sequence(std::vector<ActionPtr> parts) : parts_(std::move(parts)) {
    std::erase(parts_, nullptr);
    for (const ActionPtr& part : parts_) duration_ += part->duration();
  }
  double duration() const override { return duration_; }
  bool runsWhilePaused() const override {
    return !parts_.empty() &&
           std::all_of(parts_.begin(), parts_.end(), [](const ActionPtr& p) { return p->runsWhilePaused(); });
  }
  std::unique_ptr<Run> start(Node&) const override { return std::make_unique<SequenceRun>(parts_); }

 private:
  std::vector<ActionPtr> parts_;
  double duration_ = 0;
};

class RepeatForeverRun final : public Action::Run {
 public:
  explicit RepeatForeverRun(const Action& action) : action_(action) {}

  double step(Node& target, double dt) override {
    // An action that takes no time repeats once per step rather than forever within one step.
    bool once = action_.duration() <= 0;
    for (;;) {
      if (!current_) current_ = action_.start(target);
      double left = current_->step(target, dt);
      if (left < 0) return -1.0;
      current_.reset();
      if (once || left <= 0) return -1.0;
      dt = left;
    }
  }

 private:
  const Action& action_;
  std::unique_ptr<Action::Run> current_;
};

class RepeatForever final : public Action {
 public:
  explicit RepeatForever(ActionPtr action) : action_(std::move(action)) {}
  double duration() const override { return std::numeric_limits<double>::infinity(); }
  bool runsWhilePaused() const override { return action_->runsWhilePaused(); }
  std::unique_ptr<Run> start(Node&) const override { return std::make_unique<RepeatForeverRun>(*action_); }

 private:
  ActionPtr action_;
};

}  // namespace

namespace actions {

ActionPtr moveBy(double dx, double dy, double duration) { return std::make_shared<TimedActionWith<MoveByRun, Point>>(Point{dx, dy}, duration); }
ActionPtr moveToX(double x, double duration) { return std::make_shared<TimedActionWith<MoveToXRun, double>>(x, duration); }
ActionPtr fadeOut(double duration) { return std::make_shared<FadeOut>(duration); }
ActionPtr rotateBy(double angle, double duration) { return std::make_shared<TimedActionWith<RotateByRun, double>>(angle, duration); }
ActionPtr changeVolumeTo(float volume, double duration) { return std::make_shared<TimedActionWith<ChangeVolumeRun, float, true>>(volume, duration); }
ActionPtr playSoundFile(std::filesystem::path file) { return std::make_shared<PlaySoundFile>(std::move(file)); }
ActionPtr removeFromParent() { return std::make_shared<RemoveFromParent>(); }
ActionPtr sequence(std::vector<ActionPtr> parts) { return std::make_shared<Sequence>(std::move(parts)); }

ActionPtr repeatForever(ActionPtr action) {
  if (!action) action = sequence({});
  return std::make_shared<RepeatForever>(std::move(action));
}

}  // namespace actions

}  // namespace zb

