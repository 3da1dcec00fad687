#!/usr/bin/env bash
# The folders depend on each other downwards only, in what they include and in what they link; Qt
# stays in ui/ and app/, and what differs between systems in serial/platform/.
#   tests/checks/layers.sh [root of the tree]
set -euo pipefail
cd "${1:-$(dirname "$0")/../..}"

core="sequence/context"
transport="$core protocol serial serial/platform timing targetfile"

# allowed <folder>: what its files may include and link, beside its own.
allowed() {
    case $1 in
    sequence/context) echo "" ;;
    protocol | timing | targetfile) echo "$core" ;;
    serial | serial/platform) echo "$core serial serial/platform" ;;
    sequence) echo "$transport" ;;
    advice) echo "$core protocol serial serial/platform targetfile" ;;
    console | ui) echo "$transport sequence advice" ;;
    app) echo "$transport sequence advice ui" ;;
    board) echo "" ;;
    *) return 1 ;;
    esac
}

# layer_of <path>: the folder of the rules that a path belongs to; none for other folders.
layer_of() {
    case $1 in
    sequence/context/*) echo sequence/context ;;
    serial/platform/*) echo serial/platform ;;
    app/* | ui/* | console/* | advice/* | sequence/* | protocol/* | serial/* | timing/* | targetfile/* \
        | board/*)
        echo "${1%%/*}"
        ;;
    tests/* | bench/*) echo "${1%%/*}" ;;
    esac
}

# layer_of_target <library>: the folder whose CMakeLists.txt makes it.
layer_of_target() {
    local maker
    maker=$(grep -lE "flashwriter_library\\($1\\b" "${makers[@]}" | head -n 1) || true
    layer_of "${maker:-nowhere}"
}
mapfile -t makers < <(find . -path ./build -prune -o -name CMakeLists.txt -print | sed 's,^\./,,')

problems=0
problem() {
    echo "FAILED: $*"
    problems=$((problems + 1))
}

may_use() { # <folder> <other folder>
    [[ $1 == "$2" || " $(allowed "$1") " == *" $2 "* ]]
}

check_includes() { # <file> <folder>
    local line number included layer
    while IFS=: read -r number line; do
        included=$(sed -E 's/^[[:space:]]*#[[:space:]]*(include|import)[[:space:]]*([<"][^>"]*[>"]).*/\2/' <<<"$line")
        layer=$(layer_of "${included:1:-1}")
        if [[ -n $layer ]]; then
            may_use "$2" "$layer" || problem "$1:$number: $2 may not include $layer: $included"
        elif [[ $2 != ui && $2 != app && $included =~ ^[\<\"](Qt|Q[A-Z]) ]]; then
            problem "$1:$number: only ui and app may include Qt: $included"
        elif [[ $included == \"* && ! ( $2 =~ ^(ui|app)$ && $included =~ ^\"(ui_[^/]*\.h|[^/]*\.moc)\"$ ) ]]; then
            problem "$1:$number: included paths begin at the root of the tree: $included"
        fi
    done < <(grep -nE '^[[:space:]]*#[[:space:]]*(include|import)' "$1" || true)
}

systems='__linux(__)?|__gnu_linux__|__APPLE__|__MACH__|TARGET_OS_[A-Z]+|_WIN32|__FreeBSD__|Q_OS_[A-Z]+'
check_system_conditions() { # <file> <folder>
    local number line
    [[ $2 == serial/platform ]] && return
    while IFS=: read -r number line; do
        problem "$1:$number: what differs between systems belongs into serial/platform: $line"
    done < <(grep -nE "\\b($systems)\\b|^[[:space:]]*#[[:space:]]*(el)?if.*\\blinux\\b" "$1" || true)
}

check_links() { # <CMakeLists.txt> <folder>
    local number target layer
    while IFS=: read -r number target; do
        target=${target#flashwriter::}
        target=${target#flashwriter_}
        layer=$(layer_of_target "$target")
        may_use "$2" "$layer" || problem "$1:$number: $2 may not link $target (${layer:-made nowhere})"
    done < <(sed -E 's/#.*//; s/\bflashwriter_[a-z_]+[[:space:]]*\(/(/g' "$1" |
        grep -noE '\bflashwriter(::|_)[a-z_]+' || true)
    if [[ $2 != ui && $2 != app ]]; then
        while IFS=: read -r number target; do
            problem "$1:$number: only ui and app may use Qt: $target"
        done < <(sed 's/#.*//' "$1" | grep -niE '\bqt6?\b|\bQt6?::|\bqt6?_' || true)
    fi
}

files=0
for top in app ui console advice sequence protocol serial timing targetfile board; do
    [[ -d $top ]] || continue
    while read -r file; do
        folder=$(layer_of "$file")
        files=$((files + 1))
        case $file in
        */CMakeLists.txt | *.cmake) check_links "$file" "$folder" ;;
        *)
            check_includes "$file" "$folder"
            check_system_conditions "$file" "$folder"
            ;;
        esac
    done < <(find "$top" -type f \( -name '*.h' -o -name '*.hpp' -o -name '*.c' -o -name '*.cpp' \
        -o -name '*.mm' -o -name '*.cmake' -o -name CMakeLists.txt \) | sort)
done

if ((files == 0)); then
    problem "there is no source in any folder"
fi
echo "$files files"
((problems == 0))
