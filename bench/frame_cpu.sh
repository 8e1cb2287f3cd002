#!/bin/bash
# Processor time the windowed game spends per frame, from a fixed amount of work rather than a
# sampling window: the game runs full screen under Xvfb with --autoplay for FRAMES frames and again
# for a couple of frames (start-up alone), and the difference of their user+system time, divided by
# the frames, is the cost of one frame. Times come from the kernel's per-process accounting (bash's
# `time`, millisecond resolution), so this resolves changes far below what windowed_frames.sh's
# 1/100 s ticks over 20 s can; the X server is not included (windowed_frames.sh shows it).
# Usage: frame_cpu.sh PATH/TO/zindlebop [FRAMES] [REPEATS] [SIZES...]
# Environment such as ZINDLEBOP_DAMAGE=off or ZINDLEBOP_PRESENT=gl is passed through to the game.
set -euo pipefail

game=${1:?usage: frame_cpu.sh PATH/TO/zindlebop [FRAMES] [REPEATS] [SIZES...]}
frames=${2:-900}
repeats=${3:-3}
shift $(($# >= 3 ? 3 : $#))
sizes=("$@")
[[ ${#sizes[@]} -gt 0 ]] || sizes=(1920x1080 3840x2160)
startup_frames=2

source "$(dirname "$0")/virtual_display.sh"

# Milliseconds of user+system time of one run of N frames.
cpu_ms() {
  local n=$1 TIMEFORMAT='%3U %3S' spent
  spent=$( { time env DISPLAY="$display" SDL_AUDIODRIVER=dummy "$game" --fullscreen --autoplay --seed 1 \
    --prefs "$scratch/prefs.ini" --frames "$n" >/dev/null 2>&1; } 2>&1)
  awk -v t="$spent" 'BEGIN { split(t, f, " "); printf "%.0f\n", 1000 * (f[1] + f[2]) }'
}

printf '%-10s %8s %14s %14s\n' size frames ms/frame %core@60
for size in "${sizes[@]}"; do
  start_display "$size"
  for _ in $(seq "$repeats"); do
    rm -f "$scratch/prefs.ini"
    base=$(cpu_ms "$startup_frames")
    rm -f "$scratch/prefs.ini"
    full=$(cpu_ms "$frames")
    awk -v s="$size" -v n="$frames" -v b="$base" -v f="$full" -v k="$startup_frames" 'BEGIN {
      per = (f - b) / (n - k)
      printf "%-10s %8d %14.3f %14.2f\n", s, n, per, per * 60 / 10
    }'
  done
  stop_display
done
