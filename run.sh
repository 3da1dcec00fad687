#!/usr/bin/env bash
# Builds the program and writes a real image with it into the virtual board, on a fresh Debian 12:
#   ./run.sh
# Ends with 0 when the board's flash holds the image afterwards, byte for byte.
set -euo pipefail
cd "$(dirname "$0")"
exec </dev/null

speed=500000
image_size_limit=$((100 * 1024))
writer=build/release/console/flashwrite
board=build/release/board/virtual-board
# Gives the board's port the modem lines and BREAK, which a pseudo-terminal does not carry.
lines_library=build/release/board/lines-preload/liblines-preload.so
targets=(flashwrite virtual-board lines-preload)

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

fail() {
    echo
    echo "FAILED: $*"
    exit 1
}

show_board_messages() {
    if [[ -s $work/board.err ]]; then
        echo "The board said:"
        sed 's/^/    /' "$work/board.err"
    fi
}

build() {
    echo "== Building the program and the virtual board"
    if ! { cmake --preset release && cmake --build --preset release --target "${targets[@]}"; } \
        >"$work/build.log" 2>&1; then
        tail -n 100 "$work/build.log"
        fail "the program cannot be built; the reason is above."
    fi
    local product
    for product in "$writer" "$board" "$lines_library"; do
        [[ -e $product ]] || fail "the build made no $product."
    done
}

# The machine code of the writer itself: as good an image as any, and different with each version.
make_image() {
    echo "== Making an image from the program's own code"
    objcopy -O binary --only-section=.text "$writer" "$work/text.bin"
    head -c "$image_size_limit" "$work/text.bin" >"$work/image.bin"
    [[ -s $work/image.bin ]] || fail "the program has no code to make an image of."
    echo "$(stat -c %s "$work/image.bin") bytes"
}

# Sets port.
start_board() {
    echo "== Starting the virtual board"
    "$board" --once --flash-out "$work/flash.bin" >"$work/board.out" 2>"$work/board.err" &
    board_process=$!
    local deadline=$((SECONDS + 10)) word=""
    port=""
    until [[ $word == port && -n $port ]]; do
        if ! kill -0 "$board_process" 2>/dev/null; then
            show_board_messages
            fail "the virtual board ended before it told its port."
        fi
        ((SECONDS < deadline)) || fail "the virtual board did not tell its port within 10 s."
        sleep 0.05
        # The line counts only once it is complete.
        read -r word port <"$work/board.out" || word=""
    done
    echo "Its port is $port."
}

write_image() {
    echo "== Writing the image at $speed bits per second"
    local status=0
    timeout 300 env LD_PRELOAD="$PWD/$lines_library" "$writer" "$port" "$speed" "$work/image.bin" || status=$?
    if ((status != 0)); then
        show_board_messages
        fail "the writer ended with status $status."
    fi
}

# The board ends by itself after one write, and has stored its flash then.
wait_for_board() {
    local deadline=$((SECONDS + 10))
    while kill -0 "$board_process" 2>/dev/null; do
        if ((SECONDS >= deadline)); then
            show_board_messages
            fail "the virtual board did not end within 10 s of the write."
        fi
        sleep 0.05
    done
    local status=0
    wait "$board_process" || status=$?
    board_process=""
    if ((status != 0)); then
        show_board_messages
        fail "the virtual board ended with status $status."
    fi
}

compare() {
    echo "== Comparing the board's flash with the image"
    [[ -s $work/flash.bin ]] || fail "the virtual board did not store its flash."
    local image_size flash_size
    image_size=$(stat -c %s "$work/image.bin")
    flash_size=$(stat -c %s "$work/flash.bin")
    ((flash_size >= image_size)) || fail "the flash holds $flash_size bytes, the image $image_size."
    {
        cat "$work/image.bin"
        head -c "$((flash_size - image_size))" /dev/zero | tr '\0' '\377'
    } >"$work/expected.bin"
    cmp "$work/expected.bin" "$work/flash.bin" || fail "the board's flash differs from the image."
    echo
    echo "Done: the board's flash holds the $image_size bytes of the image, and is blank behind them."
}

scripts/install-packages.sh run
build
make_image
start_board
write_image
wait_for_board
compare
