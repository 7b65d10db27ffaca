#!/usr/bin/env bash
# Sets everything up and runs every test.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh --with-server
export QT_QPA_PLATFORM=offscreen
ctest --test-dir "${TARVIK_BUILD_DIR:-build}" --output-on-failure -j"$(nproc)"
