#!/usr/bin/env bash
# Runs one fuzz target for a bounded time from its committed seeds and prints one line about it.
# New inputs and crashes go next to the binary, never into the source tree.
# usage: fuzz/run_fuzzer.sh BINARY [SECONDS]
set -euo pipefail
binary=$(realpath "$1")
seconds=${2:-60}
name=$(basename "$binary")  # fuzz_script
here=$(cd "$(dirname "$0")" && pwd)
seeds="$here/corpus/${name#fuzz_}"
work="$(dirname "$binary")/$name.out"
mkdir -p "$work/corpus" "$work/crashes"

# Font and media libraries keep caches until exit; they are not the game's leaks.
export LSAN_OPTIONS="suppressions=$here/../scripts/lsan.supp:print_suppressions=0"
options=(-max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 -print_final_stats=1
  -artifact_prefix="$work/crashes/")
[[ -f "$here/${name#fuzz_}.dict" ]] && options+=(-dict="$here/${name#fuzz_}.dict")

log="$work/last-run.log"
if "$binary" "${options[@]}" "$work/corpus" "$seeds" >"$log" 2>&1; then
  runs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log")
  inputs=$(find "$work/corpus" -type f | wc -l)
  echo "$name: ${seconds} s, ${runs:-?} runs, $inputs inputs learned, no crash"
else
  echo "$name: FAILED; the input is in $work/crashes/, the log in $log" >&2
  grep -A30 -m1 -E "^==[0-9]+==|deadly signal|ERROR: libFuzzer" "$log" >&2 || tail -40 "$log" >&2
  exit 1
fi
