# Sourced by the windowed benchmarks: a scratch folder and a virtual X display of a chosen size, both
# gone when the script exits. Provides `scratch`, `start_display SIZE` (sets `display` and `xvfb_pid`)
# and `stop_display`.
command -v Xvfb >/dev/null 2>&1 || { echo "$(basename "$0"): Xvfb is missing" >&2; exit 1; }
scratch=$(mktemp -d)
xvfb_pid=""
cleanup() {
  [[ -n $xvfb_pid ]] && kill "$xvfb_pid" 2>/dev/null
  rm -rf "$scratch"
}
trap cleanup EXIT

start_display() {
  local size=$1
  rm -f "$scratch/display"
  Xvfb -displayfd 9 -screen 0 "${size}x24" -nolisten tcp 9>"$scratch/display" 2>/dev/null &
  xvfb_pid=$!
  for _ in $(seq 50); do
    [[ -s $scratch/display ]] && break
    sleep 0.1
  done
  display=":$(head -n1 "$scratch/display")"
}

stop_display() {
  kill "$xvfb_pid"
  wait "$xvfb_pid" 2>/dev/null || true
  xvfb_pid=""
}
