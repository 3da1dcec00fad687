#!/usr/bin/env bash
# Builds the program and writes an image with it into the virtual board, on a fresh Debian 12:
#   ./run.sh
# Ends with 0 only when the board's flash holds the image afterwards, byte for byte.
set -euo pipefail
cd "$(dirname "$0")"
exec </dev/null

speed=500000
image_size=100000 # bytes; not whole blocks, as few images are
flash_kib=128
block_size=1024
old_byte=165 # what every byte of the board's flash holds before the write
writer=build/release/console/flashwrite
board=build/release/board/program/virtual-board
# Gives the board's port the modem lines and BREAK, which a pseudo-terminal does not carry. The path
# stays relative: an absolute one might hold a blank, where the loader would cut it.
lines_library=build/release/board/lines-preload/lines-preload.so
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

step() {
    echo
    echo "== $*"
}

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

# bytes <number> <value>: so many bytes of this value.
bytes() {
    head -c "$1" /dev/zero | tr '\0' "\\$(printf %o "$2")"
}

build() {
    step "Building flashwrite and the virtual board (a minute or two the first time)"
    if ! { cmake --preset release && cmake --build --preset release --target "${targets[@]}"; } \
        >"$work/build.log" 2>&1; then
        tail -n 100 "$work/build.log"
        fail "the program cannot be built; the reason is above."
    fi
    local product
    for product in "$writer" "$board" "$lines_library"; do
        [[ -e $product ]] || fail "the build made no $product."
    done
    echo "$writer is there."
}

make_image() {
    step "Making an image: the first $image_size bytes of flashwrite's own machine code"
    objcopy -O binary --only-section=.text "$writer" "$work/text.bin" ||
        fail "objcopy cannot read $writer."
    head -c "$image_size" "$work/text.bin" >"$work/image.bin"
    (($(stat -c %s "$work/image.bin") == image_size)) || fail "$writer has less code than that."
    echo "$work/image.bin"
}

# Sets port.
start_board() {
    step "Starting the virtual board, a simulated microcontroller; its flash is full of old bytes"
    "$board" --once --flash-kib "$flash_kib" --flash-fill "$old_byte" --flash-out "$work/flash.bin" \
        >"$work/board.out" 2>"$work/board.err" &
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
    echo "It offers the serial port $port."
}

# What the terminal shows, as lines for a file or a pipe: the log, and of the progress every stage
# and every ten percent. A carriage return alone goes back to the beginning of the line, over which
# the next text is written.
as_lines() {
    local LC_ALL=C line="" piece text before="" shown end
    while IFS= read -r -d $'\r' piece || [[ -n $piece ]]; do
        while [[ $piece == *$'\n'* ]]; do
            text=${piece%%$'\n'*}
            line=$text${line:${#text}}
            end=${line##*[! ]}
            printf '%s\n' "${line%"$end"}"
            line=""
            piece=${piece#*$'\n'}
        done
        line=$piece${line:${#piece}}
        if [[ $line =~ ([A-Z][a-z\ ]+\.)\ \(([0-9]+)\ %\) ]]; then
            shown="${BASH_REMATCH[1]} $((BASH_REMATCH[2] / 10))"
            if [[ $shown != "$before" ]]; then
                printf '    %s (%s %%)\n' "${BASH_REMATCH[1]}" "${BASH_REMATCH[2]}"
            fi
            before=$shown
        fi
    done
    if [[ $line == *[!\ ]* ]]; then
        printf '%s\n' "$line"
    fi
}

# On a terminal the person sees what flashwrite shows there. To anything else it would send its
# diagnostics, thousands of lines, so it is given a terminal of its own.
run_writer() {
    local limit=(timeout --foreground 300)
    local command=(env LD_PRELOAD="$lines_library" "$writer" "$port" "$speed" "$work/image.bin")
    if [[ -t 2 ]]; then
        "${limit[@]}" "${command[@]}"
    else
        SHELL=/bin/bash "${limit[@]}" script -qefc "$(printf '%q ' "${command[@]}")" /dev/null | as_lines
    fi
}

write_image() {
    step "Writing the image at $speed bits per second"
    echo "\$ flashwrite $port $speed $work/image.bin"
    local status=0
    run_writer || status=$?
    if ((status == 124)); then
        fail "flashwrite did not end within 300 s."
    elif ((status != 0)); then
        show_board_messages
        fail "flashwrite ended with status $status; what it says of the reason is above."
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
    step "Comparing the board's flash with the image"
    [[ -s $work/flash.bin ]] || fail "the virtual board did not store its flash."
    local flash_size written
    flash_size=$(stat -c %s "$work/flash.bin")
    written=$(((image_size + block_size - 1) / block_size * block_size))
    ((flash_size >= written)) || fail "the flash holds $flash_size bytes, and $written were written."
    {
        cat "$work/image.bin"
        bytes $((written - image_size)) 255
        bytes $((flash_size - written)) "$old_byte"
    } >"$work/expected.bin"
    cmp "$work/expected.bin" "$work/flash.bin" || fail "the board's flash differs from the image."
    echo "The flash holds the image's $image_size bytes, then 0xFF to the end of their last block."
    echo "The other $((flash_size - written)) of its $flash_size bytes are the old ones: untouched."
}

scripts/install-packages.sh run
build
make_image
start_board
write_image
wait_for_board
compare
echo
echo "Done: flashwrite wrote the image into the board, and every byte of it is there."
