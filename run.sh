#!/usr/bin/env bash
# Builds Flash Writer and runs it on the virtual board, on a fresh Debian 12:
#   ./run.sh
# With a display it opens the program, with the board plugged in, for you to use. Without one it
# makes a display of its own, writes an image through the program's window as a person would, with
# mouse and keys, opens the serial monitor, and leaves pictures of it all in build/screenshots/; it
# then ends with 0 only when everything went as it should.
set -euo pipefail
cd "$(dirname "$0")"
exec </dev/null

image=build/demo/firmware.bin
image_size=60000 # bytes; not whole blocks, as few images are
link=/dev/cu.usbserial-virtual
program=build/release/app/flash-writer
board=build/release/board/program/virtual-board
tour=build/release/tests/endtoend/tour/desktop-tour
screenshots=build/screenshots
# Gives the board's port the modem lines and BREAK, which a pseudo-terminal does not carry. The path
# stays relative: an absolute one might hold a blank, where the loader would cut it.
lines_library=build/release/board/lines-preload/lines-preload.so

work=$(mktemp -d)
board_process=""

stop_board() {
    if [[ -n $board_process ]]; then
        kill "$board_process" 2>/dev/null || true
        wait "$board_process" 2>/dev/null || true
        board_process=""
    fi
}
trap 'stop_board; rm -rf "$work"' EXIT
trap 'exit 130' INT
trap 'exit 143' TERM

step() {
    echo
    echo "== $*"
}

fail() {
    echo
    echo "FAILED: $*"
    exit 1
}

has_display() { [[ -n ${DISPLAY:-}${WAYLAND_DISPLAY:-} ]]; }

# build <target>...
build() {
    step "Building the program and the virtual board (a few minutes the first time)"
    if ! { cmake --preset release && cmake --build --preset release --target "$@"; } \
        >"$work/build.log" 2>&1; then
        tail -n 100 "$work/build.log"
        fail "the program cannot be built; the reason is above."
    fi
    echo "$program is there."
}

make_image() {
    step "Making an image: the first $image_size bytes of the program's own machine code"
    mkdir -p "$(dirname "$image")"
    objcopy -O binary --only-section=.text "$program" "$work/text.bin" ||
        fail "objcopy cannot read $program."
    head -c "$image_size" "$work/text.bin" >"$image"
    (($(stat -c %s "$image") == image_size)) || fail "$program has less code than that."
    echo "$image"
}

# Sets port: the link where one may be made, else the board's own name.
start_board() {
    local linked=()
    if [[ -w /dev && (-L $link || ! -e $link) ]]; then
        rm -f "$link" # a run that was killed leaves it behind
        linked=(--link "$link")
    fi
    "$board" "${linked[@]}" --flash-kib 128 --monitor-speed 9600 --monitor-ms 1000 \
        --monitor-text $'Hello from the virtual board.\r\n' \
        >"$work/board.out" 2>"$work/board.err" &
    board_process=$!
    local deadline=$((SECONDS + 10)) word=""
    port=""
    until [[ $word == port && -n $port ]]; do
        if ! kill -0 "$board_process" 2>/dev/null; then
            cat "$work/board.err"
            fail "the virtual board ended before it told its port."
        fi
        ((SECONDS < deadline)) || fail "the virtual board did not tell its port within 10 s."
        sleep 0.05
        # The line counts only once it is complete.
        read -r word port <"$work/board.out" || word=""
    done
    if ((${#linked[@]} > 0)); then
        port=$link
    fi
}

open_program() {
    step "Opening Flash Writer; a virtual board is plugged in as $port"
    if [[ $port == "$link" ]]; then
        echo "1. Port: $port is chosen already."
    else
        echo "1. Port: type $port (the list cannot show it: only root can make links in /dev)."
    fi
    echo "2. Image: press Select and choose $PWD/$image."
    echo "3. Press Write. Afterwards Open shows what the board's program says. Closing ends this."
    local status=0
    LD_PRELOAD="$lines_library" "$program" 2>"$work/program.err" || status=$?
    if ((status != 0)); then
        tail -n 20 "$work/program.err"
        fail "the program ended with status $status. (Without a display, unset DISPLAY and" \
            "WAYLAND_DISPLAY: this script then makes one.)"
    fi
}

take_tour() {
    step "There is no display: using Flash Writer on one of its own, with mouse and keys"
    rm -rf "$screenshots"
    mkdir -p "$screenshots"
    "$tour" "$program" "$lines_library" "$image" "$screenshots" ||
        fail "the program did not do as it should; see above and $screenshots/."
    echo
    echo "Done: the board holds the image, byte for byte. The pictures:"
    ls "$screenshots"/*.png
}

scripts/install-packages.sh run
if has_display; then
    build flash-writer virtual-board lines-preload
    make_image
    start_board
    open_program
else
    build flash-writer lines-preload desktop-tour
    make_image
    take_tour
fi
