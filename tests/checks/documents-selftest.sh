#!/usr/bin/env bash
# The check of the documents can fail: it finds each of these faults and passes what is right.
# The backquotes in these texts are Markdown.
# shellcheck disable=SC2016
set -euo pipefail
cd "$(dirname "$0")/../.."
check="$PWD/tests/checks/documents.sh"

tree=$(mktemp -d)
trap 'rm -rf "$tree"' EXIT
problems=0

# document <pass|fail> <file> <text>
document() {
    local wanted=$1 file=$2 text=$3 output status=0
    rm -rf "${tree:?}"/*
    mkdir -p "$tree/docs" "$tree/serial" "$tree/build"
    echo '{ "name": "release" }' >"$tree/CMakePresets.json"
    printf '# The program\n\n## What it does, and how\n' >"$tree/README.md"
    echo 'The folder serial/ talks to the port.' >"$tree/docs/architecture.md"
    touch "$tree/run.sh" "$tree/serial/CMakeLists.txt" "$tree/serial/Port.h"
    printf '%b\n' "$text" >>"$tree/$file"
    output=$("$check" "$tree" 2>&1) || status=$?
    if [[ $wanted == pass && $status != 0 ]] ||
        [[ $wanted == fail && ($status == 0 || $output != *"FAILED: "*"$file"*) ]]; then
        printf 'FAILED: with "%s" in %s the check should %s; it ended with %s and said\n%s\n' \
            "$text" "$file" "$wanted" "$status" "$output"
        problems=$((problems + 1))
    fi
}

document pass README.md 'nothing more'
document pass README.md 'See [the folders](docs/architecture.md) and [more](https://www.example.org/x).'
document fail README.md 'See [the folders](docs/missing.md).'
document fail README.md '![The window](docs/window.png)'
document fail README.md '<img src="docs/window.png">'
document pass README.md 'See [above](#what-it-does-and-how).'
document fail README.md 'See [above](#what-it-did).'
document fail docs/architecture.md 'See [the port](../README.md#the-port).'
document pass docs/architecture.md 'See [the port](../README.md#the-program), `serial/Port.h`, `Port.h`.'
document pass README.md 'Write `firmware.bin` to `/dev/ttyUSB0`, at `a/b`.'
document fail README.md 'The class stands in `serial/NSPort.h`.'
document fail README.md 'The class stands in `NSPort.h`.'
document pass README.md '```sh\n./run.sh  # ./like-this.sh\ncmake --preset release\n```'
document fail README.md '```sh\n./walk.sh\n```'
document fail README.md '```sh\nbash serial/walk.sh\n```'
document fail README.md '```sh\ncmake --preset relaese\n```'
document fail README.md '```sh\nbuild/release/console/missing PORT\n```'

mkdir "$tree/timing"
touch "$tree/timing/CMakeLists.txt"
printf 'nothing more\n' >"$tree/README.md"
if "$check" "$tree" >/dev/null 2>&1; then
    echo "FAILED: the check does not miss a folder in docs/architecture.md"
    problems=$((problems + 1))
fi
rm -r "$tree/timing" "$tree/docs/architecture.md"
if "$check" "$tree" >/dev/null 2>&1; then
    echo "FAILED: the check does not miss docs/architecture.md"
    problems=$((problems + 1))
fi
((problems == 0))
