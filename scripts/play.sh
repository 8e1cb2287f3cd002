#!/usr/bin/env bash
# Builds the game (installing what is missing) and starts it; arguments go to the game. The play
# preset leaves the tests out, so a player needs none of the test packages.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/deps.sh
cmake --preset play >/dev/null
cmake --build --preset play --target zindlebop
exec build/play/zindlebop "$@"
