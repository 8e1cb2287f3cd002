// Arbitrary text as a headless script: every line goes through the parser, and the commands up to
// the first bad line are played against a real scene, as the driver would. Each dump must be JSON.
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <sstream>
#include <string>
#include <string_view>
#include <unistd.h>

#include <nlohmann/json.hpp>

#include "headless/headless_session.hpp"
#include "headless/script_command.hpp"
#include "settings/preference_keys.hpp"

namespace {

// Caps that keep one input to a few milliseconds; long runs belong to the soak tests.
constexpr uint64_t kMaxFramesPerCommand = 120;
constexpr uint64_t kMaxFramesPerInput = 900;
constexpr size_t kMaxCommands = 64;
// A screenshot of the whole view is drawn only up to this many points, so that a huge resize does
// not turn into gigabytes of pixels.
constexpr double kMaxScreenshotArea = 1024.0 * 768.0;
// A stored volume whose percentage leaves the integer range stops the game on purpose.
constexpr float kMaxStoredVolume = 1e6f;

[[noreturn]] void fail() { __builtin_trap(); }

std::string lineAt(std::string_view text, size_t& at) {
  size_t end = text.find('\n', at);
  if (end == std::string_view::npos) end = text.size();
  std::string line(text.substr(at, end - at));
  at = end + 1;
  return line;
}

bool storesAFatalVolume(const zb::PrefSetCommand& command) {
  if (command.key != zb::kMusicVolumeKey) return false;
  zb::MemoryPreferences probe;
  probe.setObject(command.key, command.value);
  float volume = probe.floatForKey(command.key);
  return !(std::fabs(volume) <= kMaxStoredVolume);
}

class Player {
 public:
  Player() : session_(options(), out_) {}

  // Runs one command within the caps; false when the input is out of frames.
  bool play(zb::ScriptCommand command) {
    if (auto* step = std::get_if<zb::StepCommand>(&command)) step->frames = take(step->frames);
    if (auto* autoplay = std::get_if<zb::AutoplayCommand>(&command)) autoplay->frames = take(autoplay->frames);
    if (auto* pref = std::get_if<zb::PrefSetCommand>(&command); pref && storesAFatalVolume(*pref)) return true;
    if (auto* shot = std::get_if<zb::ScreenshotCommand>(&command)) {
      zb::Size size = session_.view().size();
      if (!(size.width * size.height <= kMaxScreenshotArea)) return true;
      shot->file = screenshotFile();
    }
    session_.run(command);
    checkDumps();
    return framesLeft_ > 0;
  }

 private:
  static zb::HeadlessOptions options() {
    zb::HeadlessOptions options;
    options.seed = 1;
    options.resourceFolder = "";
    options.fallbackFolder = "";
    return options;
  }

  // One file for every picture of the run, removed when the process ends.
  static std::string screenshotFile() {
    struct Scratch {
      std::filesystem::path file =
          std::filesystem::temp_directory_path() / ("zb-fuzz-shot-" + std::to_string(::getpid()) + ".png");
      ~Scratch() {
        std::error_code ignored;
        std::filesystem::remove(file, ignored);
      }
    };
    static const Scratch scratch;
    return scratch.file.string();
  }

  uint64_t take(uint64_t frames) {
    uint64_t granted = std::min({frames, kMaxFramesPerCommand, framesLeft_});
    framesLeft_ -= granted;
    return granted;
  }

  void checkDumps() {
    std::string text = out_.str();
    if (text.empty()) return;
    out_.str("");
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
      if (!nlohmann::json::accept(line)) fail();
    }
  }

  std::ostringstream out_;
  zb::HeadlessSession session_;
  uint64_t framesLeft_ = kMaxFramesPerInput;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  std::string_view text(reinterpret_cast<const char*>(data), size);
  Player player;
  bool playing = true;
  size_t commands = 0;
  for (size_t at = 0; at <= text.size();) {
    zb::ParsedLine line = zb::parseScriptLine(lineAt(text, at));
    if (line.command && line.error) fail();
    if (line.error && line.error->empty()) fail();
    if (line.error) playing = false;  // nothing after a bad line runs
    if (playing && line.command && commands++ < kMaxCommands) playing = player.play(*line.command);
  }
  return 0;
}
