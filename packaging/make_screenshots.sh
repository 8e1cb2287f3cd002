#!/usr/bin/env bash
# Draws the store screenshots with the game's own headless driver (the same renderer as the window).
# Usage: bash packaging/make_screenshots.sh [path/to/zindlebop]
set -euo pipefail
cd "$(dirname "$0")/.."
game=${1:-build/release/zindlebop}
shoot() {  # $1: picture, $2: script before the screenshot
  printf '%s\nscreenshot %s\n' "$2" "$1" | "$game" --headless --size 800x600 --seed 7 --fallback none >/dev/null
}
shoot docs/screenshot-menu.png 'launch
step 90'
# No jumps: the first obstacle ends the run, and the game-over page is up once the dots settle.
shoot docs/screenshot-game-over.png 'launch
key down space
key up space
step 420'
