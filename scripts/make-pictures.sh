#!/usr/bin/env bash
# Renders the calendar's pictures from their drawings in resources/svg/ into resources/*.png, each at
# the size its drawing declares (32 px for toolbar and corner pictures, 16 px for the small icons that
# headers and booking boxes draw unscaled). information.svg is used as a vector picture and stays as is.
# Needs rsvg-convert (Debian package librsvg2-bin) and the DejaVu fonts for the digits.
set -euo pipefail
cd "$(dirname "$0")/../resources"

for drawing in svg/*.svg; do
    name=$(basename "$drawing" .svg)
    rsvg-convert --format=png --output="$name.png" "$drawing"
    echo "$name.png"
done
