#!/usr/bin/env bash
# Builds everything and starts the demo host application on its default database (created and seeded
# in the user's data folder at the first start). Arguments go to the demo, e.g. --database FILE.
# Without a display the demo cannot open its window: it then writes a screenshot and says where.
set -euo pipefail
cd "$(dirname "$0")/.."

bash scripts/build.sh

BUILD_DIR=${BUILD_DIR:-build}
demo="$BUILD_DIR/bin/fwcalendar-demo"

if [ -z "${DISPLAY:-}" ] && [ -z "${WAYLAND_DISPLAY:-}" ] && [ "${QT_QPA_PLATFORM:-}" != "offscreen" ]; then
    shot="$(pwd)/$BUILD_DIR/fwcalendar-demo.png"
    echo "There is no display here (neither DISPLAY nor WAYLAND_DISPLAY is set), so the demo cannot open"
    echo "its window. It renders the calendar to a picture instead: $shot"
    exec "$demo" --screenshot "$shot" "$@"
fi
exec "$demo" "$@"
