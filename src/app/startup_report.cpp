#include "app/startup_report.hpp"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <fstream>
#include <sstream>
#include <string>

namespace zb {

namespace {

// The start time is field 22 of /proc/self/stat, in clock ticks since boot. The command name (field
// 2) is in parentheses and may hold spaces, so counting starts after its closing parenthesis.
constexpr int kFieldsBeforeStartTime = 19;

std::optional<double> processStartSecondsSinceBoot() {
  std::ifstream file("/proc/self/stat");
  std::string stat;
  if (!std::getline(file, stat)) return std::nullopt;
  const std::size_t nameEnd = stat.rfind(')');
  if (nameEnd == std::string::npos) return std::nullopt;
  std::istringstream fields(stat.substr(nameEnd + 1));
  std::string field;
  for (int i = 0; i < kFieldsBeforeStartTime && fields >> field;) ++i;
  unsigned long long ticks = 0;
  const long ticksPerSecond = ::sysconf(_SC_CLK_TCK);
  if (!(fields >> ticks) || ticksPerSecond <= 0) return std::nullopt;
  return static_cast<double>(ticks) / static_cast<double>(ticksPerSecond);
}

}  // namespace

bool firstFrameReportRequested() {
  const char* value = std::getenv(kReportFirstFrameVariable);
  return value != nullptr && std::strcmp(value, "1") == 0;
}

std::optional<double> millisecondsSinceProcessStart() {
  const std::optional<double> start = processStartSecondsSinceBoot();
  timespec now{};
  if (!start || ::clock_gettime(CLOCK_BOOTTIME, &now) != 0) return std::nullopt;
  const double nowSeconds = static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
  return (nowSeconds - *start) * 1000;
}

void reportFirstFrame() {
  if (const std::optional<double> ms = millisecondsSinceProcessStart()) {
    std::fprintf(stderr, "first frame: %.0f ms after process start\n", *ms);
  } else {
    std::fprintf(stderr, "first frame: process start unknown\n");
  }
}

}  // namespace zb
