#!/usr/bin/env bash
# Looks with valgrind for invalid reads and writes, for uses of what was never set, and for leaks:
#   scripts/valgrind.sh
# in the image readers' tests, and in whole writes by flashwrite to a virtual board. Needs the release
# build, and the Debian package valgrind. Under valgrind everything is some thirty times slower, so the board takes no
# time for its bytes, and a write that comes too late for mode entry is tried again.
set -euo pipefail
cd "$(dirname "$0")/.."

command -v valgrind >/dev/null || { echo "valgrind is not installed: apt-get install valgrind"; exit 1; }
build=build/release
checker=(valgrind --quiet --error-exitcode=99 --leak-check=full --show-leak-kinds=all
    "--errors-for-leak-kinds=definite,indirect,possible" --fair-sched=yes)
work=$(mktemp -d)
board=
finish() {
    [[ -z $board ]] || kill "$board" 2>/dev/null || true
    rm -rf "$work"
}
trap finish EXIT

problems=0
# check <what it is> <command>...: nothing to be found in it.
check() {
    local what=$1 status=0
    shift
    "$@" >"$work/output" 2>&1 || status=$?
    if ((status == 0)); then
        echo "clean: $what"
    else
        cat "$work/output"
        echo "FAILED (status $status): $what"
        problems=1
    fi
}

# A board of its own for each write.
power_up() {
    "$build/board/program/virtual-board" --no-pace --link "$work/port" --flash-out "$work/flash" \
        >"$work/board" &
    board=$!
    for _ in {1..50}; do
        [[ -e $work/port ]] || sleep 0.1
    done
}
power_down() {
    kill "$board"
    wait "$board" || true
    board=
}

# write <image>: a write that ends well, and its flash. With status 1 it failed, for want of time, and is
# tried again; any other is a find.
write() {
    local status
    for _ in 1 2 3 4 5; do
        status=0
        power_up
        LD_PRELOAD=$build/board/lines-preload/lines-preload.so timeout 120 "${checker[@]}" \
            "$build/console/flashwrite" "$work/port" 500000 "$1" 2>"$work/errors" || status=$?
        power_down
        if ((status != 1)); then
            break
        fi
        echo "tried again after status $status"
    done
    grep -E '^==' "$work/errors" || true
    ((status == 0)) || return "$status"
    cmp --bytes=3000 "$work/flash" "$work/image.bin"
}

head -c 3000 /dev/urandom >"$work/image.bin"
objcopy -I binary -O srec "$work/image.bin" "$work/image.mot"

check "the tests of the image readers" "${checker[@]}" --child-silent-after-fork=yes \
    "$build/tests/unit/targetfile/targetfile_tests" --gtest_brief=1
check "the help" "${checker[@]}" "$build/console/flashwrite" --help
check "a raw image" write "$work/image.bin"
check "an image of S-records" write "$work/image.mot"
((problems == 0))
