#!/usr/bin/env bash
# clang-tidy finds nothing in the program's and the board's own sources, compiled as in the preset asan, but one by one.
# With arguments, only these files.
#
# Most of its checks walk through every header that a source includes, the same ones again and again,
# so the sources of a folder are read as one. Its path analysis looks at nothing but the source that
# it is given and is cheap: it takes them one by one.
set -euo pipefail
cd "$(dirname "$0")/../.."

command -v clang-tidy >/dev/null || { echo "FAILED: clang-tidy is not installed"; exit 1; }

log=build/tidy.log
mkdir -p build
if ! cmake --preset asan -B build/lint -D CMAKE_UNITY_BUILD=OFF \
    -D FLASHWRITER_BUILD_TESTS=OFF -D FLASHWRITER_BUILD_BENCHMARKS=ON >"$log" 2>&1; then
    cat "$log"
    echo "FAILED: the build that says how to compile each source cannot be configured"
    exit 1
fi
# Sources that include generated headers need these first; a build of what makes them would also
# build every library that they are linked with.
while read -r description; do
    if ! cmake -E cmake_autogen "$description" "" >"$log" 2>&1; then
        cat "$log"
        echo "FAILED: generated headers cannot be made"
        exit 1
    fi
done < <(find build/lint -name AutogenInfo.json)

sources=()
problems=0
while read -r source; do
    if grep -qF "\"file\": \"$PWD/$source\"" build/lint/compile_commands.json; then
        sources+=("$source")
    elif [[ $source == serial/platform/* || $source == app/WarmFonts* ]]; then
        echo "left out, compiled on another system only: $source"
    else
        echo "FAILED: the build does not compile $source"
        problems=1
    fi
done < <(if (($# > 0)); then
    printf '%s\n' "$@"
else
    scripts/list-sources.sh app ui console advice sequence protocol serial timing targetfile board |
        grep -E '\.(c|cpp|mm)$'
fi)
if ((${#sources[@]} == 0)); then
    echo "FAILED: there is nothing to read"
    exit 1
fi

# These are read by themselves: two versions of one system header would meet in the board's, and a
# main() beside all that it calls is told of every allocation that may fail.
apart=" board/LineSpeed.cpp console/main.cpp app/main.cpp "

# The sources of each folder, as one file in build/tidy/, with the compile command of the first.
rm -rf build/tidy
mkdir -p build/tidy
declare -A first=()
for source in "${sources[@]}"; do
    name=$(dirname "$source")
    [[ $apart == *" $source "* ]] && name=$source
    name=${name//\//-}
    first[$name]=${first[$name]:-$source}
    printf '#include "%s"\n' "$source" >>"build/tidy/${name%.cpp}.cpp"
done
{
    echo '['
    separator=""
    for name in "${!first[@]}"; do
        command=$(grep -F -B 2 "\"file\": \"$PWD/${first[$name]}\"" build/lint/compile_commands.json |
            sed -nE 's/^ *"command": "(.*)",$/\1/p' | head -n 1)
        unit="$PWD/build/tidy/${name%.cpp}.cpp"
        printf '%s{"directory": "%s/build/lint", "file": "%s", "command": "%s"}\n' \
            "$separator" "$PWD" "$unit" "${command//$PWD\/${first[$name]}/$unit}"
        separator=","
    done
    echo ']'
} >build/tidy/compile_commands.json

echo "${#sources[@]} sources"
{
    printf 'build/tidy\0%s\0' build/tidy/*.cpp
    printf 'build/lint\0%s\0' "${sources[@]}" # printf takes both again for each further one
} | xargs -0 -P "$(nproc)" -n 2 tests/checks/tidy-one.sh || problems=1
((problems == 0))
