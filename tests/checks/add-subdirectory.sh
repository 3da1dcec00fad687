#!/usr/bin/env bash
# Another project can take the tree in with add_subdirectory and link a library of it; tests,
# benchmarks and warnings as errors are off there.
set -euo pipefail
cd "$(dirname "$0")/../.."

build=$(mktemp -d)
trap 'rm -rf "$build"' EXIT
quietly() {
    if ! "$@" >"$build/log" 2>&1; then
        cat "$build/log"
        echo "FAILED: $*"
        exit 1
    fi
}
quietly cmake -S tests/checks/outer -B "$build" -G Ninja -DFLASHWRITER_TREE="$PWD" \
    -DCMAKE_CXX_COMPILER=g++ -DCMAKE_EXPORT_COMPILE_COMMANDS=ON
quietly cmake --build "$build" --target outer
quietly "$build/outer"

problems=0
problem() {
    echo "FAILED: $*"
    problems=$((problems + 1))
}
for option in BUILD_TESTS BUILD_BENCHMARKS BUILD_CHECKS WARNINGS_AS_ERRORS; do
    grep -qxE "FLASHWRITER_$option:BOOL=(OFF|0|)" "$build/CMakeCache.txt" ||
        problem "FLASHWRITER_$option is not off: $(grep "FLASHWRITER_$option:" "$build/CMakeCache.txt")"
done
if ! grep -q 'ContextInfo.cpp' "$build/compile_commands.json"; then
    problem "the compile commands do not show how the tree is compiled"
elif grep -q -e '-Werror' "$build/compile_commands.json"; then
    problem "the tree is compiled with -Werror"
fi
if ninja -C "$build" -t targets all | grep -E '^flashwriter/(tests|bench|board)/[^:]*\.o:'; then
    problem "the above belong to tests, benchmarks or the virtual board"
fi
if ! ctest --test-dir "$build" -N | grep -qx 'Total Tests: 0'; then
    problem "the tree adds tests"
fi
((problems == 0))
