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
echo "### Collision layout of one column"
echo
echo "| operation | bookings | time | Qt floor | ratio |"
echo "|---|---|---|---|---|"
# QtTest prints milliseconds per iteration, or nanoseconds for a median that a case timed itself. The
# floor cases stand beside the cases they are the floor of, in the same run.
"$BUILD_DIR/bin/bench_collisions" 2>/dev/null | grep -A1 '^RESULT' | grep -v '^--' | paste - - |
    sed -E 's/RESULT : bench_Collisions::([A-Za-z]+)\(\):"([0-9]+)":[[:space:]]+([0-9.,]+) (msecs|nsecs).*/\1 \2 \3 \4/' |
    awk 'BEGIN { floorOf["arriveOneByOne"] = "qtFloorArrival"; floorOf["addBookingsOneByOne"] = "qtFloorOneByOne" }
         { v = $3; gsub(",", "", v); if ($4 == "nsecs") v /= 1e6;
           if (!(($1, $2) in ms)) order[++n] = $1 SUBSEP $2; ms[$1, $2] = v }
         END {
           for (i = 1; i <= n; ++i) {
             split(order[i], key, SUBSEP);
             if (key[1] ~ /^qtFloor/) continue;
             floor = ""; ratio = "";
             if ((key[1] in floorOf) && ((floorOf[key[1]], key[2]) in ms)) {
               f = ms[floorOf[key[1]], key[2]];
               floor = sprintf("%.3g ms", f); ratio = sprintf("%.1f", ms[key[1], key[2]] / f);
             }
             printf "| %s | %s | %.3g ms | %s | %s |\n", key[1], key[2], ms[key[1], key[2]], floor, ratio;
           }
         }'
echo
echo "### Demo: group view of 30 resources on 100,000 bookings"
"$BUILD_DIR/bin/bench_demo_group" 2>/dev/null | grep -v '^fw.log'
