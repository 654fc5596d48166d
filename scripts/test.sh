#!/usr/bin/env bash
# Builds everything and runs the automatic tests; fails when a test fails.
set -euo pipefail
cd "$(dirname "$0")/.."

bash scripts/build.sh

BUILD_DIR=${BUILD_DIR:-build}
export QT_QPA_PLATFORM=offscreen
cd "$BUILD_DIR"
ctest --output-on-failure --timeout 600 "$@"
