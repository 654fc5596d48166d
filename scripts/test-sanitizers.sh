#!/usr/bin/env bash
# Builds the project with the address and undefined-behaviour sanitizers (build-asan/) and runs the
# suite under them: any invalid memory access, leak, undefined behaviour or float-to-integer overflow
# fails its test. The package test is left out, since its consumer is built without the sanitizers'
# runtime, and the test in a real X window runs without the leak check, which there reports the
# window system's libraries.
set -euo pipefail
cd "$(dirname "$0")/.."

bash scripts/setup.sh
# Configured every time, so that the build keeps the preset's flags.
cmake --preset asan >/dev/null
cmake --build build-asan --parallel "$(nproc)"

export ASAN_OPTIONS=detect_leaks=1
export LSAN_OPTIONS="suppressions=$PWD/scripts/lsan.supp:print_suppressions=0"
export UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1
cd build-asan
ctest --output-on-failure --parallel "$(nproc)" -E '^(package_consumer|tst_demodrive)$'
ASAN_OPTIONS=detect_leaks=0 ctest --output-on-failure -R '^tst_demodrive$'
