#include "app/frame_report.hpp"

#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace zb {

bool reportRequested(const char* variable) {
  const char* value = std::getenv(variable);
  return value != nullptr && std::string_view(value) == "1";
}

DamageMode damageMode() {
  const char* value = std::getenv(kDamageVariable);
  if (value == nullptr) return DamageMode::tracked;
  const std::string_view v(value);
  if (v == "verify") return DamageMode::verify;
  return v == "off" || v == "0" || v == "no" ? DamageMode::off : DamageMode::tracked;
}

std::string frameReportLine(const FrameLoopStats& stats) {
  char line[128];
  std::snprintf(line, sizeof line, "frames: %lld drawn, %lld steps in %.2f s", static_cast<long long>(stats.framesDrawn),
                static_cast<long long>(stats.steps), stats.seconds);
  return line;
}

}  // namespace zb
