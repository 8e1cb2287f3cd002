#!/usr/bin/env bash
# Builds the game (installing what is missing) and starts it; arguments go to the game.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/deps.sh
cmake --preset release >/dev/null
cmake --build --preset release --target zindlebop
exec build/release/zindlebop "$@"
