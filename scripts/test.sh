#!/usr/bin/env bash
# Builds and runs every test: once in an optimised build, once under AddressSanitizer and
# UndefinedBehaviorSanitizer. Installs what is missing first.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/deps.sh test

jobs=$(nproc)
export LSAN_OPTIONS="suppressions=$PWD/scripts/lsan.supp:print_suppressions=0"
export UBSAN_OPTIONS="print_stacktrace=1:halt_on_error=1"

for preset in release sanitize; do
  echo "=== $preset: build"
  cmake --preset "$preset" >/dev/null
  cmake --build --preset "$preset" -j "$jobs"
  echo "=== $preset: tests"
  ctest --preset "$preset" -j "$jobs"
done
