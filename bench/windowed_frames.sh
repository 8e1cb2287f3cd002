#!/bin/bash
# What a frame of the windowed game costs, measured under a virtual X display (Xvfb) while the
# built-in player plays in full screen: processor time of the game and of the X server (as a share of
# one core, from their utime+stime), simulation steps and drawn frames a second, and the game's
# resident memory. Each size runs three ways side by side: the framebuffer path, the same with every
# frame redrawn and sent whole (ZINDLEBOP_DAMAGE=off), and the GL path (forced; under Xvfb its driver
# is Mesa's software one).
# Processor time, not wall time, is measured, so other work on the machine disturbs the figures less;
# still, run it on a quiet machine.
# Usage: windowed_frames.sh PATH/TO/zindlebop [SECONDS] [SIZES...]
set -euo pipefail

game=${1:?usage: windowed_frames.sh PATH/TO/zindlebop [SECONDS] [SIZES...]}
seconds=${2:-20}
shift $(($# >= 2 ? 2 : $#))
sizes=("$@")
[[ ${#sizes[@]} -gt 0 ]] || sizes=(1920x1080 3840x2160)
warm_up=2  # start-up (fonts, the first full frame) is not what is measured

source "$(dirname "$0")/virtual_display.sh"
ticks=$(getconf CLK_TCK)

cpu_ticks() {  # utime + stime of a process
  awk '{ print $14 + $15 }' "/proc/$1/stat"
}

# One run: prints "game% x% steps/s frames/s rssMB".
measure() {
  local present=$1 damage=$2
  env DISPLAY="$display" SDL_AUDIODRIVER=dummy ZINDLEBOP_PRESENT="$present" ZINDLEBOP_DAMAGE="$damage" \
    ZINDLEBOP_REPORT_FRAMES=1 "$game" --fullscreen --autoplay --seed 1 --prefs "$scratch/prefs.ini" \
    2>"$scratch/report" &
  local game_pid=$!
  sleep "$warm_up"
  local g0 x0 g1 x1 rss
  g0=$(cpu_ticks "$game_pid")
  x0=$(cpu_ticks "$xvfb_pid")
  sleep "$seconds"
  g1=$(cpu_ticks "$game_pid")
  x1=$(cpu_ticks "$xvfb_pid")
  rss=$(awk '/^VmRSS/ { print $2 }' "/proc/$game_pid/status")
  kill -TERM "$game_pid"  # SDL turns this into a quit, and the game prints its frame report
  wait "$game_pid" || true
  local report
  report=$(grep '^frames:' "$scratch/report" || echo "frames: 0 drawn, 0 steps in 1 s")
  awk -v g="$((g1 - g0))" -v x="$((x1 - x0))" -v hz="$ticks" -v s="$seconds" -v rss="$rss" -v r="$report" 'BEGIN {
    split(r, f, " ")  # frames: D drawn, S steps in T s
    printf "%6.1f %6.1f %7.2f %7.2f %6.1f\n", 100 * g / hz / s, 100 * x / hz / s, f[4] / f[7], f[2] / f[7], rss / 1024
  }'
}

printf '%-10s %-26s %7s %7s %8s %8s %7s\n' size run game% X% steps/s frames/s RSS_MB
for size in "${sizes[@]}"; do
  start_display "$size"
  for run in "framebuffer on" "framebuffer off" "gl on"; do
    read -r present damage <<<"$run"
    label="$present$([[ $damage == off ]] && echo ', full redraw' || echo ', damage only')"
    read -r game_cpu x_cpu steps frames rss < <(measure "$present" "$damage")
    printf '%-10s %-26s %7s %7s %8s %8s %7s\n' "$size" "$label" "$game_cpu" "$x_cpu" "$steps" "$frames" "$rss"
  done
  stop_display
done
