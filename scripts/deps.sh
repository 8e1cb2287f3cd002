#!/usr/bin/env bash
# Installs the Debian packages the game needs to build (and, with "test", to test) when any is missing.
# As root it installs them; otherwise it prints the one command that would, and stops.
set -euo pipefail

build_packages=(
  build-essential cmake ninja-build pkg-config
  libsdl2-dev libsdl2-mixer-dev libcairo2-dev libpixman-1-dev libpango1.0-dev libglib2.0-dev libx11-dev fonts-dejavu-core
  librsvg2-bin  # draws the icons from their SVG at build time
)
test_packages=(
  libgtest-dev libgmock-dev libbenchmark-dev python3 clang libclang-rt-14-dev
  xvfb xauth xdotool x11-utils openbox  # the real window under a virtual display, with a window manager or without
  libgl1-mesa-dri libegl-mesa0          # the GL presentation path, forced onto software GL
  sox libsox-fmt-mp3 libebur128-dev     # measuring the sounds
  dbus-daemon                           # a stand-in desktop portal on a private bus
  nlohmann-json3-dev                    # reading the dumps
  desktop-file-utils appstream lintian man-db groff-base  # validating what an install puts in place
  devscripts                            # hardening-check, on the packaged program
)

wanted=("${build_packages[@]}")
if [[ "${1:-}" == "test" ]]; then
  wanted+=("${test_packages[@]}")
fi

missing=()
for package in "${wanted[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q "install ok installed"; then
    missing+=("$package")
  fi
done
[[ ${#missing[@]} -eq 0 ]] && exit 0

command="apt-get update && apt-get install -y ${missing[*]}"
if [[ $(id -u) -ne 0 ]]; then
  echo "zindlebop: missing packages; run as root: $command" >&2
  exit 1
fi
echo "Installing: ${missing[*]}"
export DEBIAN_FRONTEND=noninteractive
apt-get update -qq
apt-get install -y -qq --no-install-recommends "${missing[@]}"
