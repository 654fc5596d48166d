#!/usr/bin/env bash
# Builds everything and starts the demo host application.
set -euo pipefail
cd "$(dirname "$0")/.."

bash scripts/build.sh

BUILD_DIR=${BUILD_DIR:-build}
demo="$BUILD_DIR/bin/fwcalendar-demo"
if [ ! -x "$demo" ]; then
    echo "The libraries are built, but the demo application is not there yet."
    exit 0
fi
exec "$demo" "$@"
