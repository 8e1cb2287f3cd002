// A test whose outside program is missing may skip on a developer's machine, never under CI.
#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

#include <cstdlib>

#include "support/tools.hpp"

namespace zb::test {
namespace {

void needsAMissingProgram() { ZB_REQUIRE_PROGRAMS("sh", "zb-no-such-program"); }
void needsPresentPrograms() { ZB_REQUIRE_PROGRAMS("sh", "env"); }

TEST(RequiredPrograms, UnderCiAMissingProgramFailsTheTestAndNamesIt) {
  const char* before = std::getenv("CI");
  const std::string saved = before != nullptr ? before : "";
  setenv("CI", "true", 1);
  EXPECT_FATAL_FAILURE(needsAMissingProgram(), "zb-no-such-program is not installed");
  needsPresentPrograms();
  EXPECT_FALSE(HasFailure() || IsSkipped());
  if (before != nullptr) {
    setenv("CI", saved.c_str(), 1);
  } else {
    unsetenv("CI");
  }
}

}  // namespace
}  // namespace zb::test
