#pragma once
// Tests that drive outside programs (a virtual display, a bus daemon, the packaging tools). Without
// one such a test is skipped on a developer's machine, but fails under CI (CI=true), so that a runner
// missing a tool cannot report green; scripts/deps.sh installs them all.
#include <glib.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <initializer_list>
#include <string>
#include <string_view>

namespace zb::test {

inline bool underCi() {
  const std::string_view ci = std::getenv("CI") != nullptr ? std::getenv("CI") : "";
  return !ci.empty() && ci != "false" && ci != "0";
}

// The first of `programs` that is not on the PATH; empty when all are.
inline std::string firstMissingProgram(std::initializer_list<const char*> programs) {
  for (const char* program : programs) {
    g_autofree gchar* found = g_find_program_in_path(program);
    if (found == nullptr) return program;
  }
  return {};
}

}  // namespace zb::test

// Ends the test unless every named program is on the PATH: skipped, or failed under CI.
#define ZB_REQUIRE_PROGRAMS(...)                                                                     \
  do {                                                                                               \
    const std::string zbMissing = ::zb::test::firstMissingProgram({__VA_ARGS__});                    \
    if (zbMissing.empty()) break;                                                                    \
    if (::zb::test::underCi()) FAIL() << zbMissing << " is not installed; under CI every test runs"; \
    GTEST_SKIP() << zbMissing << " is not installed";                                                \
  } while (false)
