#!/usr/bin/env bash
# What a build installs runs from there.
#   tests/checks/install.sh <build directory> <program>...
# Each program must be installed as bin/<program>, answer --help, and not look for libraries in the
# build directory.
set -euo pipefail
build=$1
shift
if (($# == 0)); then
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
for program in "$@"; do
    if [[ ! -x bin/$program ]]; then
        problem "bin/$program is not installed"
        continue
    fi
    output=$(timeout 20 "bin/$program" --help 2>&1 </dev/null) || problem "$program --help ends with $?: $output"
    [[ -n $output ]] || problem "$program --help says nothing"
    if readelf -d "bin/$program" | grep -E '\((RPATH|RUNPATH)\)' | grep -F "$build"; then
        problem "$program looks for libraries in the build directory"
    fi
done
((problems == 0))
