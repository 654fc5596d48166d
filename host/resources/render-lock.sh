#!/usr/bin/env bash
# Renders the padlock picture from its SVG source. Run after changing lock.svg; the PNG is kept in
# the repository so that a build needs no SVG tools.
set -euo pipefail
cd "$(dirname "$0")"
rsvg-convert --width 16 --height 16 --format png --output widgets/lock.png lock.svg
