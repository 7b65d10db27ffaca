#!/usr/bin/env bash
# Sets everything up and starts Tarvik.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh
exec "${TARVIK_BUILD_DIR:-build}/tarvik" "$@"
