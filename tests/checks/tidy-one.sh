#!/bin/sh
# clang-tidy over one file; its output in one piece, and only when there is something to say.
if ! output=$(clang-tidy -p build/asan --quiet "$1" 2>&1); then
    printf 'FAILED: %s\n%s\n' "$1" "$output"
    exit 1
fi
