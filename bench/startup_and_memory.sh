#!/bin/sh
# Start-up and memory of the windowed game under a virtual X display (Xvfb):
#   - the time from process start to the first frame on screen, the median of several warm starts;
#   - the peak resident memory (max RSS) of a 60-second run (3600 frames).
# Usage: startup_and_memory.sh PATH/TO/zindlebop [STARTS]
set -eu

game=${1:?usage: startup_and_memory.sh PATH/TO/zindlebop [STARTS]}
starts=${2:-5}
frames_in_a_minute=3600

for tool in xvfb-run /usr/bin/time; do
  command -v "$tool" >/dev/null 2>&1 || { echo "startup_and_memory.sh: $tool is missing" >&2; exit 1; }
done

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
# A private preferences file, so that the runs neither read nor change the player's settings.
prefs="$scratch/prefs.json"

first_frame_ms() {
  ZINDLEBOP_REPORT_FIRST_FRAME=1 xvfb-run -a "$game" --frames 1 --prefs "$prefs" 2>&1 |
    sed -n 's/^first frame: \([0-9]*\) ms.*/\1/p'
}

# One start to warm the file-system and font caches, then the measured ones.
first_frame_ms >/dev/null
: >"$scratch/starts"
i=0
while [ "$i" -lt "$starts" ]; do
  first_frame_ms >>"$scratch/starts"
  i=$((i + 1))
done
count=$(grep -c . "$scratch/starts" || true)
if [ "$count" -eq 0 ]; then
  echo "first frame: not reported (is the game built with the start-up report?)"
else
  median=$(sort -n "$scratch/starts" | sed -n "$(((count + 1) / 2))p")
  echo "first frame: $median ms after process start (median of $count warm starts under Xvfb; all: $(sort -n "$scratch/starts" | tr '\n' ' '))"
fi

xvfb-run -a /usr/bin/time -f '%M' -o "$scratch/rss" "$game" --frames "$frames_in_a_minute" --prefs "$prefs" >/dev/null 2>&1
kilobytes=$(tail -n 1 "$scratch/rss")
echo "peak memory: $(awk -v kb="$kilobytes" 'BEGIN { printf "%.1f", kb / 1024 }') MB max RSS over $frames_in_a_minute frames (60 s) under Xvfb"
