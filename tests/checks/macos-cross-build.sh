#!/usr/bin/env bash
# Everything below the windows compiles and links for macOS on Apple silicon.
set -euo pipefail
cd "$(dirname "$0")/../.."

# Shows a step's output only when the step fails.
log=build/macos.log
mkdir -p build
quietly() {
    if ! "$@" >"$log" 2>&1; then
        tail -n 150 "$log"
        echo "FAILED: $*"
        exit 1
    fi
}

for tool in npm cmake ninja file; do
    if ! command -v "$tool" >/dev/null; then
        echo "FAILED: $tool is not installed"
        exit 1
    fi
done
quietly scripts/install-zig.sh
quietly cmake --preset macos
quietly cmake --build --preset macos

problems=0
problem() {
    echo "FAILED: $*"
    problems=$((problems + 1))
}

# What the build was asked to link, by its own description: path, a tab, library or executable.
products=$(ninja -C build/macos -t targets all |
    sed -nE 's/^([^:]+): CXX_(STATIC_LIBRARY|EXECUTABLE)_LINKER__.*/\1\t\2/p')
if [[ -z $products ]]; then
    problem "the build links nothing"
fi

members=$(mktemp -d)
trap 'rm -rf "$members"' EXIT
while IFS=$'\t' read -r product kind; do
    path="build/macos/$product"
    if [[ ! -s $path ]]; then
        problem "$path was not built"
    elif [[ $kind == EXECUTABLE ]]; then
        if [[ $(file -b "$path") != "Mach-O 64-bit arm64 executable"* ]]; then
            problem "$path is no program for macOS on arm64: $(file -b "$path")"
        fi
    else
        rm -rf "${members:?}"/*
        (cd "$members" && "$OLDPWD/cmake/toolchains/zig-ar" x "$OLDPWD/$path")
        count=0
        for member in "$members"/*; do
            [[ -e $member ]] || continue
            count=$((count + 1))
            if [[ $(file -b "$member") != "Mach-O 64-bit arm64 object"* ]]; then
                problem "$path: ${member##*/} is not for macOS on arm64: $(file -b "$member")"
            fi
        done
        if ((count == 0)); then
            problem "$path holds nothing"
        fi
    fi
    echo "$product"
done <<<"$products"

# A folder that the cross build leaves out would go unnoticed.
for folder in sequence/context timing protocol targetfile serial sequence advice; do
    name=libflashwriter_${folder##*/}.a
    if [[ -e $folder/CMakeLists.txt ]] && ! grep -q "^$folder/$name"$'\t' <<<"$products"; then
        problem "$folder is not part of the cross build"
    fi
done
if [[ -e console/CMakeLists.txt ]] && ! grep -q $'^console/flashwrite\t' <<<"$products"; then
    problem "console/flashwrite is not part of the cross build"
fi

((problems == 0))
