#include "headless/headless_driver.hpp"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <fstream>
#include <iostream>
#include <string_view>
#include <vector>

#include "headless/error_quote.hpp"
#include "headless/headless_session.hpp"
#include "headless/script_command.hpp"

namespace zb {
namespace {

constexpr std::string_view kUsage =
    "usage: zindlebop --headless [--size WxH] [--seed N] [--prefs FILE] [--resources DIR]\n"
    "                            [--fallback DIR|none] [--script FILE]\n";

constexpr int kExitOK = 0;
constexpr int kExitBadInput = 2;

std::optional<double> parsePositive(std::string_view text) {
  double number = 0;
  auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size() || !std::isfinite(number) || number <= 0) {
    return std::nullopt;
  }
  return number;
}

std::optional<Size> parseSize(std::string_view text) {
  size_t cross = text.find('x');
  if (cross == std::string_view::npos) return std::nullopt;
  auto width = parsePositive(text.substr(0, cross));
  auto height = parsePositive(text.substr(cross + 1));
  if (!width || !height) return std::nullopt;
  return Size{*width, *height};
}

std::optional<uint64_t> parseSeed(std::string_view text) {
  uint64_t seed = 0;
  auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), seed);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return seed;
}

struct CommandLine {
  HeadlessOptions options;
  std::optional<std::string> scriptFile;
  bool help = false;
};

// Sets one option from its value; false when the value is not acceptable.
bool applyOption(std::string_view name, const std::string& value, CommandLine& line) {
  HeadlessOptions& options = line.options;
  if (name == "--size") {
    auto size = parseSize(value);
    if (size) options.size = *size;
    return size.has_value();
  }
  if (name == "--seed") {
    options.seed = parseSeed(value);
    return options.seed.has_value();
  }
  // The rest name files and folders, which cannot be empty.
  if (value.empty()) return false;
  if (name == "--prefs") options.prefsFile = value;
  if (name == "--resources") options.resourceFolder = value;
  if (name == "--fallback") options.fallbackFolder = value == "none" ? std::string() : value;
  if (name == "--script") line.scriptFile = value;
  return true;
}

std::optional<CommandLine> parseCommandLine(int argc, char** argv, std::ostream& err) {
  CommandLine line;
  static constexpr std::string_view kValueOptions[] = {"--size",     "--seed",     "--prefs",
                                                       "--resources", "--fallback", "--script"};
  for (int i = 1; i < argc; ++i) {
    std::string_view argument = argv[i];
    if (argument == "--headless") continue;
    if (argument == "--help" || argument == "-h") {
      line.help = true;
      continue;
    }
    std::string_view name = argument.substr(0, argument.find('='));
    bool known = std::find(std::begin(kValueOptions), std::end(kValueOptions), name) != std::end(kValueOptions);
    if (!known) {
      err << "zindlebop: unknown option " << quotedForError(argument) << "\n";
      return std::nullopt;
    }
    std::string value;
    if (name.size() < argument.size()) {
      value = std::string(argument.substr(name.size() + 1));
    } else if (i + 1 < argc) {
      value = argv[++i];
    } else {
      err << "zindlebop: " << name << " needs a value\n";
      return std::nullopt;
    }
    if (!applyOption(name, value, line)) {
      err << "zindlebop: bad value " << quotedForError(value) << " for " << name << "\n";
      return std::nullopt;
    }
  }
  return line;
}

}  // namespace

int runHeadless(const HeadlessOptions& options, std::istream& script, std::ostream& out, std::ostream& err) {
  HeadlessSession session(options, out);
  std::string text;
  for (uint64_t lineNumber = 1; std::getline(script, text); ++lineNumber) {
    // A NUL would cut a file name short on its way to the system; no command has a use for one.
    ParsedLine line = text.find('\0') != std::string::npos
                          ? ParsedLine{std::nullopt, "the line holds a NUL character"}
                          : parseScriptLine(text);
    std::optional<std::string> failure = line.error;
    if (!failure && line.command) failure = session.run(*line.command);
    if (failure) {
      out.flush();
      err << "line " << lineNumber << ": " << *failure << std::endl;
      return kExitBadInput;
    }
  }
  out.flush();
  return kExitOK;
}

int runHeadlessMain(int argc, char** argv) {
  std::optional<CommandLine> line = parseCommandLine(argc, argv, std::cerr);
  if (!line) {
    std::cerr << kUsage;
    return kExitBadInput;
  }
  if (line->help) {
    std::cout << kUsage;
    return kExitOK;
  }
  if (!line->scriptFile) return runHeadless(line->options, std::cin, std::cout, std::cerr);
  std::ifstream script(*line->scriptFile);
  if (!script) {
    std::cerr << "zindlebop: cannot read the script " << quotedForError(*line->scriptFile) << "\n";
    return kExitBadInput;
  }
  return runHeadless(line->options, script, std::cout, std::cerr);
}

}  // namespace zb
