#pragma once
// Opt-in start-up figures for benchmarks. With ZINDLEBOP_REPORT_FIRST_FRAME=1 in the environment,
// the windowed game prints to standard error how long after its process started the first frame was
// on screen.
#include <optional>

namespace zb {

inline constexpr const char* kReportFirstFrameVariable = "ZINDLEBOP_REPORT_FIRST_FRAME";

bool firstFrameReportRequested();

// Milliseconds since the kernel started this process (dynamic loading included), or nothing when the
// start cannot be read. The start is known to a clock tick, so this overstates by less than one tick.
std::optional<double> millisecondsSinceProcessStart();

// Prints "first frame: N ms after process start" to standard error.
void reportFirstFrame();

}  // namespace zb
