#!/usr/bin/env bash
# Tells how much of the program's own code the tests reach: scripts/coverage.sh [<ctest argument>...]
# Builds the preset coverage, runs its tests, and prints for each folder the share of lines and of
# branches that were reached, then every line that was not. Fails when the folders below the windows
# come to less than 95 % of their lines, or the windows to less than 90 %, and when a test does.
#
# A process that is killed takes what it counted with it, so the true figures are a little higher.
set -euo pipefail
cd "$(dirname "$0")/.."

build=build/coverage
profiles="$PWD/$build/profiles"
below="advice console protocol sequence serial targetfile timing"
windows="app ui"

command -v llvm-cov-14 >/dev/null || { echo "FAILED: llvm-14 is not installed"; exit 1; }
echo "Building with counters: $build"
if ! { cmake --preset coverage && cmake --build --preset coverage; } >"$build.log" 2>&1; then
    tail -n 40 "$build.log"
    exit 1
fi

echo "Running the tests of it"
rm -rf "$profiles"
mkdir -p "$profiles"
# Eight files for each program, which its processes merge their counts into.
status=0
LLVM_PROFILE_FILE="$profiles/%8m.profraw" ctest --test-dir "$build" -j "$((2 * $(nproc)))" \
    --output-on-failure --timeout 300 "$@" >"$build.ctest.log" 2>&1 ||
    status=1
tail -n 3 "$build.ctest.log"

llvm-profdata-14 merge --sparse -o "$build/profile" "$profiles"/*.profraw
mapfile -t objects < <(find "$build" -type f -executable \
    -not -path '*/CMakeFiles/*' -exec sh -c 'readelf -S "$1" 2>/dev/null | grep -q __llvm_covmap' _ {} \; -print)
arguments=("${objects[0]}")
for object in "${objects[@]:1}"; do
    arguments+=(-object "$object")
done
# shellcheck disable=SC2086 # the folders are words
llvm-cov-14 export -format=lcov -instr-profile "$build/profile" "${arguments[@]}" \
    $below $windows >"$build/coverage.lcov" 2>"$build.export.log"

awk -v root="$PWD/" -v below="$below" -v windows="$windows" -f scripts/coverage.awk "$build/coverage.lcov" ||
    status=1
((status == 0)) || { echo "FAILED: too little was reached, or not all tests passed: $build.ctest.log"; exit 1; }
