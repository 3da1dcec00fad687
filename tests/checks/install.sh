#!/usr/bin/env bash
# What a build installs runs from there.
#   tests/checks/install.sh <build directory> [<program>...] [--desktop <program>]
# Each program must be installed as bin/<program>, find its libraries, and not look for them in the
# build directory. A terminal program must answer --help; the desktop program takes no options, and must
# bring what a desktop starts it by.
set -euo pipefail
build=$1
shift
programs=()
desktop=
while (($# > 0)); do
    if [[ $1 == --desktop ]]; then
        desktop=$2
        shift
    else
        programs+=("$1")
    fi
    shift
done
if ((${#programs[@]} == 0)) && [[ -z $desktop ]]; then
    echo "FAILED: no program is named"
    exit 1
fi

staging=$(mktemp -d)
trap 'rm -rf "$staging"' EXIT
if ! cmake --install "$build" --prefix "$staging" >"$staging/log" 2>&1; then
    cat "$staging/log"
    echo "FAILED: cmake --install"
    exit 1
fi

problems=0
problem() {
    echo "FAILED: $*"
    problems=$((problems + 1))
}
cd "$staging"

# check_program <program>: whether it is there, whatever else is wrong with it.
check_program() {
    local libraries
    if [[ ! -x bin/$1 ]]; then
        problem "bin/$1 is not installed"
        return 1
    fi
    if readelf -d "bin/$1" | grep -E '\((RPATH|RUNPATH)\)' | grep -F "$build"; then
        problem "$1 looks for libraries in the build directory"
    fi
    libraries=$(ldd "bin/$1" | grep -F "not found") && problem "$1 does not find $libraries"
    return 0
}

check_help() {
    local output
    output=$(timeout 20 "bin/$1" --help 2>&1 </dev/null) || problem "$1 --help ends with $?: $output"
    [[ -n $output ]] || problem "$1 --help says nothing"
}

# check_file <path>: an ordinary file that everybody may read and nobody run.
check_file() {
    [[ -s $1 && $(stat -c %a "$1") == 644 ]] || problem "$1 is not installed, or not for everybody to read"
}

check_desktop_files() {
    local entries=(share/applications/*.desktop) id size
    if [[ ${#entries[@]} != 1 || ! -e ${entries[0]} ]]; then
        problem "not one menu entry is installed, but: ${entries[*]}"
        return
    fi
    id=$(basename "${entries[0]}" .desktop)
    check_file "${entries[0]}"
    grep -qxF "Exec=$1" "${entries[0]}" || problem "the menu entry does not start $1"
    check_file "share/metainfo/$id.metainfo.xml"
    check_file "share/icons/hicolor/scalable/apps/$id.svg"
    for size in 16 32 48 64 128 256; do
        check_file "share/icons/hicolor/${size}x$size/apps/$id.png"
    done
    # Not in a library directory of the architecture's: udev does not look there.
    check_file lib/udev/rules.d/70-flash-writer.rules
}

for program in "${programs[@]}"; do
    if check_program "$program"; then check_help "$program"; fi
done
if [[ -n $desktop ]]; then
    check_program "$desktop" || true
    check_desktop_files "$desktop"
fi
((problems == 0))
