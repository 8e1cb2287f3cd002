#pragma once
// Opt-in figures of the windowed game for benchmarks and tests, printed to standard error:
//  ZINDLEBOP_REPORT_FRAMES=1   at exit, "frames: D drawn, S steps in T s"
//  ZINDLEBOP_REPORT_PRESENT=1  at start, "present: PATH (details)", how frames reach the screen
//  ZINDLEBOP_DAMAGE=off        redraws and sends every frame whole (the comparison run)
//  ZINDLEBOP_DAMAGE=verify     draws every frame both ways and stops, with one line and status 1, at the
//                              first frame where drawing only the changes differs from a full redraw
#include <string>

#include "platform/frame_loop.hpp"

namespace zb {

inline constexpr const char* kReportFramesVariable = "ZINDLEBOP_REPORT_FRAMES";
inline constexpr const char* kReportPresentVariable = "ZINDLEBOP_REPORT_PRESENT";
inline constexpr const char* kDamageVariable = "ZINDLEBOP_DAMAGE";

bool reportRequested(const char* variable);
enum class DamageMode { tracked, off, verify };
// Off when ZINDLEBOP_DAMAGE says off (or 0, or no), verify when it says verify, tracked otherwise.
DamageMode damageMode();

std::string frameReportLine(const FrameLoopStats& stats);

}  // namespace zb
