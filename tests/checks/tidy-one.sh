#!/bin/sh
# clang-tidy over one file; its output in one piece, and only when there is something to say.
#   tests/checks/tidy-one.sh <folder of the compile commands> <file>
# A file in build/tidy/ stands for the sources that it includes and gets every check but the path
# analysis; any other gets that alone.
case $2 in
build/tidy/*)
    set -- "$1" "$2" --checks=-clang-analyzer-*,-bugprone-suspicious-include \
        --header-filter='/(app|ui|console|advice|sequence|protocol|serial|timing|targetfile|board)/[^/]*(/[^/]*)?\.(h|cpp)$'
    ;;
*) set -- "$1" "$2" --checks=-*,clang-analyzer-* ;;
esac
folder=$1
file=$2
shift 2
if ! output=$(clang-tidy -p "$folder" --quiet "$@" "$file" 2>&1); then
    printf 'FAILED: %s\n%s\n' "$file" "$output"
    exit 1
fi
