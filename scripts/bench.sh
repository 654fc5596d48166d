#!/usr/bin/env bash
# Builds the benchmarks in a Release build of their own (build-bench/) and runs them all, offscreen:
# the store, the views and gestures against Qt's floor, the collision layout, and the demo's group view
# on a large practice. Each prints its table.
set -euo pipefail
cd "$(dirname "$0")/.."

bash scripts/setup.sh
BUILD_DIR=${BENCH_BUILD_DIR:-build-bench}
if [ ! -f "$BUILD_DIR/CMakeCache.txt" ]; then
    cmake -S . -B "$BUILD_DIR" -G Ninja -DCMAKE_BUILD_TYPE=Release -DFWCALENDAR_BUILD_BENCH=ON \
        -DFWCALENDAR_BUILD_TESTS=OFF
fi
cmake --build "$BUILD_DIR" --parallel "$(nproc)" \
    --target bench_store bench_views bench_collisions bench_demo_group

export QT_QPA_PLATFORM=offscreen
echo "Machine: $(nproc) cores, $(grep -m1 'model name' /proc/cpuinfo | cut -d: -f2 | sed 's/^ *//')"
"$BUILD_DIR/bin/bench_store"
"$BUILD_DIR/bin/bench_views" 2>/dev/null | grep -v '^fw.log'
echo
echo "### Collision layout of one column (milliseconds per operation)"
# QtTest prints milliseconds per iteration, or nanoseconds for a median that a case timed itself.
"$BUILD_DIR/bin/bench_collisions" 2>/dev/null | grep -A1 '^RESULT' | grep -v '^--' | paste - - |
    sed -E 's/RESULT : bench_Collisions::([A-Za-z]+)\(\):"([0-9]+)":[[:space:]]+([0-9.,]+) (msecs|nsecs).*/\1 \2 \3 \4/' |
    awk '{ v = $3; gsub(",", "", v); if ($4 == "nsecs") v = sprintf("%.3g", v / 1e6);
           printf "| %s | %s bookings | %s ms |\n", $1, $2, v }'
echo
echo "### Demo: group view of 30 resources on 100,000 bookings"
"$BUILD_DIR/bin/bench_demo_group" 2>/dev/null | grep -v '^fw.log'
