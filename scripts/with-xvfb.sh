#!/usr/bin/env bash
# Runs a command in a real X session: a fresh Xvfb server on a free display, the Qt programs on the xcb
# platform. The server goes when the command ends.
set -euo pipefail

display_file=$(mktemp)
Xvfb -displayfd 3 -screen 0 1600x1000x24 -nolisten tcp 3>"$display_file" 2>/dev/null &
server=$!
trap 'kill "$server" 2>/dev/null || true; rm -f "$display_file"' EXIT
for _ in $(seq 1 100); do
    [ -s "$display_file" ] && break
    sleep 0.1
done
if [ ! -s "$display_file" ]; then
    echo "Xvfb did not start" >&2
    exit 1
fi
export DISPLAY=":$(head -n 1 "$display_file")"
export QT_QPA_PLATFORM=xcb
"$@"
