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

# The build as a distribution makes it: no presets, the compiler's -O3, warnings not fatal. Any warning
# still fails here, with GCC and with clang.
for compiler in gcc:g++ clang:clang++; do
  folder="build/plain-${compiler%%:*}"
  echo "=== plain Release build: ${compiler%%:*}"
  CC=${compiler%%:*} CXX=${compiler##*:} cmake -S . -B "$folder" -DCMAKE_BUILD_TYPE=Release >/dev/null
  # From clean, so that a warning in a file built by an earlier run is seen again.
  cmake --build "$folder" --clean-first -j "$jobs" 2>&1 | tee "$folder/build.log"
  if grep -q "warning:" "$folder/build.log"; then
    echo "zindlebop: the plain Release build with ${compiler%%:*} warns (see $folder/build.log)" >&2
    exit 1
  fi
done

# Short fuzz runs of the script parser and the preferences reader (clang's libFuzzer). Longer runs:
# ninja -C build/fuzz fuzz_script_run (ZB_FUZZ_SECONDS, 60 by default).
fuzz_seconds=${ZB_FUZZ_SECONDS:-15}
echo "=== fuzz: build"
cmake -S . -B build/fuzz -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DCMAKE_CXX_COMPILER=clang++ \
  -DCMAKE_C_COMPILER=clang -DZB_FUZZ=ON -DZB_TESTS=OFF -DZB_WERROR=ON >/dev/null
cmake --build build/fuzz --target fuzz_script fuzz_preferences -j "$jobs"
echo "=== fuzz: $fuzz_seconds s per target"
for target in script preferences; do
  fuzz/run_fuzzer.sh "build/fuzz/fuzz/fuzz_$target" "$fuzz_seconds"
done
