#include "headless/headless_driver.hpp"

#include <fstream>
#include <iostream>

#include "engine/quoted_text.hpp"
#include "headless/headless_session.hpp"
#include "headless/script_command.hpp"

namespace zb {
namespace {

constexpr int kExitOK = 0;
constexpr int kExitBadInput = 2;

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
      err << oneLine("line " + std::to_string(lineNumber) + ": " + *failure) << std::endl;
      return kExitBadInput;
    }
    if (session.hasQuit()) break;
  }
  out.flush();
  return kExitOK;
}

int runHeadlessMain(const HeadlessOptions& options, const std::optional<std::string>& scriptFile) {
  if (!scriptFile) return runHeadless(options, std::cin, std::cout, std::cerr);
  std::ifstream script(*scriptFile);
  if (!script) {
    std::cerr << "zindlebop: cannot read the script " << quotedForMessage(*scriptFile) << "\n";
    return kExitBadInput;
  }
  return runHeadless(options, script, std::cout, std::cerr);
}

}  // namespace zb
