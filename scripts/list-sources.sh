#!/usr/bin/env bash
# Lists the project's C and C++ sources, one path per line; with arguments, only those beneath the
# folders named that exist. Finding none is an error: whoever asks would otherwise check nothing.
set -euo pipefail
cd "$(dirname "$0")/.."

folders=()
for folder in "${@:-.}"; do
    [[ -d $folder ]] && folders+=("$folder")
done
if ((${#folders[@]} == 0)); then
    echo "none of these folders exists: $*" >&2
    exit 1
fi
find "${folders[@]}" -path ./build -prune -o -name '.?*' -prune -o -type f \
    \( -name '*.h' -o -name '*.hpp' -o -name '*.c' -o -name '*.cpp' -o -name '*.mm' \) -print |
    sed 's,^\./,,' | sort | grep .
