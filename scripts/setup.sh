#!/usr/bin/env bash
# Installs what Tarvik needs on Debian 12, then configures and builds it.
# Quick and silent when everything is already there.
set -euo pipefail
cd "$(dirname "$0")/.."

PACKAGES=(qt6-base-dev libqt6opengl6-dev libgl-dev qt6-charts-dev qt6-serialport-dev
          libqt6sql6-sqlite libqt6sql6-psql qt6-image-formats-plugins cmake ninja-build g++ ccache
          fonts-wqy-zenhei fonts-arphic-uming poppler-utils xvfb xauth x11-utils imagemagick
          adwaita-icon-theme qt6-translations-l10n libsqlite3-dev libpq-dev)
# The tests also start a PostgreSQL server of their own.
if [ "${1:-}" = "--with-server" ]; then
  PACKAGES+=(postgresql postgresql-contrib)
fi

missing=()
for p in "${PACKAGES[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' || missing+=("$p")
done
if [ ${#missing[@]} -gt 0 ]; then
  SUDO=""
  [ "$(id -u)" -ne 0 ] && SUDO="sudo"
  export DEBIAN_FRONTEND=noninteractive
  $SUDO apt-get update -qq
  $SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}"
fi

BUILD_DIR=${TARVIK_BUILD_DIR:-build}
launcher=()
command -v ccache >/dev/null && launcher=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
if [ ! -f "$BUILD_DIR/build.ninja" ]; then
  cmake -S . -B "$BUILD_DIR" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo "${launcher[@]}"
fi
cmake --build "$BUILD_DIR" -j"$(nproc)"
