#!/usr/bin/env bash
# Renders the program's icon in the sizes that desktops and the program itself ask for. The results are
# kept beside the drawing, so that building the program needs no renderer.
#   packaging/render-icons.sh [folder to put them in; the drawing's own otherwise]
set -euo pipefail
icons=$(cd "$(dirname "$0")/icons" && pwd)
into=${1:-$icons}

for size in 16 32 48 64 128 256; do
    rsvg-convert --width "$size" --height "$size" --output "$into/flash-writer-$size.png" \
        "$icons/flash-writer.svg"
done
