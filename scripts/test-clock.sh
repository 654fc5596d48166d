#!/usr/bin/env bash
# Runs the built test suite again under a faked wall clock (Debian's faketime), at the instants where
# a test that leans on the hour or on "today" would break: just after midnight, early morning, noon
# on a Monday and on a Thursday, Sunday evening and night, the last day of a month and of a year, and
# both days of a daylight-saving change in Europe/Berlin. Run scripts/test.sh first: it builds and
# installs.
set -euo pipefail
cd "$(dirname "$0")/.."

BUILD_DIR=${BUILD_DIR:-build}
export QT_QPA_PLATFORM=offscreen
# The instants are local times in Berlin; every test pins that zone for itself as well.
export TZ=Europe/Berlin

instants=(
    "2026-11-25 00:03:00"
    "2026-11-25 06:00:00"
    "2026-11-23 12:00:00"
    "2026-11-26 12:00:00"
    "2026-11-22 19:59:00"
    "2026-11-22 23:59:00"
    "2026-11-30 23:58:00"
    "2026-12-31 23:59:00"
    "2026-03-29 03:30:00"
    "2026-10-25 02:30:00"
)

cd "$BUILD_DIR"
failed=()
for instant in "${instants[@]}"; do
    echo "== suite at $instant ($TZ)"
    if ! faketime "$instant" ctest --output-on-failure --timeout 300; then
        failed+=("$instant")
    fi
done

if [ ${#failed[@]} -gt 0 ]; then
    echo "The suite failed at: ${failed[*]}"
    exit 1
fi
echo "The suite passed at all ${#instants[@]} instants."
