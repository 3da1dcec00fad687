#!/usr/bin/env bash
# clang-tidy finds nothing in the program's and the board's own sources, compiled as in build/asan.
# With arguments, only these files.
set -euo pipefail
cd "$(dirname "$0")/../.."

command -v clang-tidy >/dev/null || { echo "FAILED: clang-tidy is not installed"; exit 1; }

log=build/tidy.log
mkdir -p build
if ! cmake --preset asan >"$log" 2>&1; then
    cat "$log"
    echo "FAILED: the build that says how to compile each source cannot be configured"
    exit 1
fi
# Sources that include generated headers need these first.
mapfile -t generated < <(ninja -C build/asan -t targets all | sed -nE 's/^([^/: ]+_autogen): phony$/\1/p')
if ((${#generated[@]} > 0)) && ! ninja -C build/asan "${generated[@]}" >"$log" 2>&1; then
    cat "$log"
    echo "FAILED: generated headers cannot be made"
    exit 1
fi

sources=()
problems=0
while read -r source; do
    if grep -qF "\"file\": \"$PWD/$source\"" build/asan/compile_commands.json; then
        sources+=("$source")
    elif [[ $source == serial/platform/* ]]; then
        echo "left out, compiled on another system only: $source"
    else
        echo "FAILED: the build does not compile $source"
        problems=1
    fi
done < <(if (($# > 0)); then
    printf '%s\n' "$@"
else
    scripts/list-sources.sh app ui console advice sequence protocol serial timing targetfile board |
        grep -E '\.(c|cpp|mm)$'
fi)
if ((${#sources[@]} == 0)); then
    echo "FAILED: there is nothing to read"
    exit 1
fi

echo "${#sources[@]} sources"
printf '%s\0' "${sources[@]}" |
    xargs -0 -P "$(nproc)" -n 1 tests/checks/tidy-one.sh || problems=1
((problems == 0))
