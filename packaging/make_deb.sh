#!/usr/bin/env bash
# Builds the release tree, packs it with cpack -G DEB and checks the package with lintian and
# hardening-check.
# Usage: bash packaging/make_deb.sh   (the .deb lands in build/release/)
set -euo pipefail
cd "$(dirname "$0")/.."
cmake --preset release >/dev/null
cmake --build --preset release
cd build/release
rm -f zindlebop_*.deb
cpack -G DEB
deb=$(ls zindlebop_*.deb)
echo "== $deb"
dpkg-deb --field "$deb" Package Version Depends
# Errors fail the script; warnings and notes are printed for the record.
lintian --fail-on error --display-info "$deb"
# The build carries Debian's hardening flags (cmake/Install.cmake); Debian 12's C runtime has no
# control-flow protection, so no program can show that one.
tree=$(mktemp -d)
trap 'rm -rf "$tree"' EXIT
dpkg-deb --extract "$deb" "$tree"
hardening-check --nocfprotection "$tree/usr/games/zindlebop"
