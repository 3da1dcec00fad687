#!/usr/bin/env bash
# What the documents name is there: linked files and headings, files named in the text, the project's
# programs in shell examples, the presets, and each folder in the description of the architecture.
#   tests/checks/documents.sh [root of the tree]
set -euo pipefail
cd "${1:-$(dirname "$0")/../..}"

problems=0
problem() {
    echo "FAILED: $*"
    problems=$((problems + 1))
}

# The anchors of a document's headings, one per line.
anchors() {
    awk '/^(```|~~~)/ { code = !code } !code && /^#+ / { sub(/^#+ +/, ""); print tolower($0) }' "$1" |
        sed -E 's/[^[:alnum:] _-]//g; s/ /-/g'
}

# outside_code <document>: its text with numbered lines, without its code blocks.
outside_code() { awk '/^ *(```|~~~)/ { code = !code; next } !code { print FNR ":" $0 }' "$1"; }

# shell_code <document>: the numbered lines of its shell examples.
shell_code() {
    awk '/^ *```/ { code = !code; shell = code && /``` *(sh|bash|shell|console)/; next }
         code && shell { print FNR ":" $0 }' "$1"
}

# is_there <path> <folder of the document>: as a path from the root or from the document, or, without
# a folder, as a file of that name anywhere.
is_there() {
    [[ -e $1 || -e $2/$1 ]] && return
    [[ $1 != */* ]] && [[ -n $(find . \( -path ./build -o -path ./.git \) -prune -o -name "$1" -print -quit) ]]
}

# Whether a word is meant as a file of the project: it begins with one of the top folders, or carries
# the extension of a kind of file that the project consists of.
names_project_file() {
    [[ $1 =~ ^[A-Za-z0-9_.][A-Za-z0-9_./+-]*$ && $1 != build/* && $1 != *...* ]] || return 1
    [[ $1 == */* && -d ${1%%/*} && ${1%%/*} != . && ${1%%/*} != .. ]] && return
    [[ $1 =~ [A-Za-z0-9_]\.(h|cpp|mm|md|sh|cmake|ui|svg|png|desktop|rules|plist|json|yml)$ ]] && return
    [[ ${1##*/} == CMakeLists.txt ]]
}

check_links() {
    local document=$1 folder=$2 number line target file
    while IFS=: read -r number line; do
        while read -r target; do
            [[ -z $target || $target =~ ^[a-z]+: ]] && continue
            file=${target%%#*}
            if [[ -n $file && ! -e $folder/$file ]]; then
                problem "$document:$number: there is no $target"
            elif [[ $target == *#* ]]; then
                file=${file:+$folder/$file}
                anchors "${file:-$document}" | grep -qxF -- "${target#*#}" ||
                    problem "$document:$number: there is no heading for $target"
            fi
        done < <(grep -oE '\]\([^)]+\)|^\[[^]]+\]: +[^ ]+|(src|href)="[^"]+"' <<<"$line" |
            sed -E 's/^\]\(([^) ]+).*/\1/; s/^\[[^]]+\]: +//; s/^(src|href)="([^"]*)"/\2/')
    done < <(outside_code "$document")
}

check_named_files() {
    local document=$1 folder=$2 number line word
    while IFS=: read -r number line; do
        while read -r word; do
            if names_project_file "$word" && ! is_there "$word" "$folder"; then
                problem "$document:$number: there is no file $word"
            fi
        done < <(grep -oE "\`[^\`]+\`" <<<"$line" | tr -d "\`")
    done < <(outside_code "$document")
}

check_commands() {
    local document=$1 number line word words
    while IFS=: read -r number line; do
        read -ra words < <(sed -E "s/[\"'=;|()<>]/ /g; s/(^| )#.*//" <<<"$line")
        for word in "${words[@]}"; do
            case $word in
            ./*) [[ $word == ./build/* || -e $word ]] || problem "$document:$number: there is no $word" ;;
            *) if names_project_file "$word" && ! is_there "$word" .; then
                problem "$document:$number: there is no $word"
            fi ;;
            esac
            # The check runs after the release build; whatever an example starts from it is there then.
            if [[ $word =~ ^(\./)?build/release/ && ! -e $word ]]; then
                problem "$document:$number: the release build does not make $word"
            fi
        done
        if [[ $line =~ --preset[\ =]([A-Za-z0-9_-]+) ]] &&
            ! grep -qF "\"name\": \"${BASH_REMATCH[1]}\"" CMakePresets.json; then
            problem "$document:$number: there is no preset ${BASH_REMATCH[1]}"
        fi
    done < <(shell_code "$document")
}

check_architecture() {
    local folder
    if [[ ! -d docs ]]; then
        echo "there is no docs/ yet"
        return
    fi
    if [[ ! -s docs/architecture.md ]]; then
        problem "docs/ has no architecture.md"
        return
    fi
    while read -r folder; do
        grep -qE "(^|[^A-Za-z0-9_/.-])$folder/" docs/architecture.md ||
            problem "docs/architecture.md does not tell of $folder/"
    done < <(find . \( -path ./build -o -name '.?*' \) -prune -o -mindepth 2 -name CMakeLists.txt -print |
        cut -d/ -f2 | sort -u)
}

documents=0
while read -r document; do
    documents=$((documents + 1))
    check_links "$document" "$(dirname "$document")"
    check_named_files "$document" "$(dirname "$document")"
    check_commands "$document"
done < <(find . \( -path ./build -o -path ./.git \) -prune -o -name '*.md' -print | sed 's,^\./,,' | sort)
[[ -s README.md ]] || problem "there is no README.md"
check_architecture

echo "$documents documents"
((problems == 0))
