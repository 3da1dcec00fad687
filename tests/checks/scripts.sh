#!/usr/bin/env bash
# There is nothing that shellcheck finds fault with in the project's scripts, which are the files that
# begin as one.
set -euo pipefail
cd "$(dirname "$0")/../.."

scripts=()
while read -r file; do
    if head -n 1 "$file" | grep -aqE '^#!.*[/ ](ba|da)?sh( |$)'; then
        scripts+=("$file")
        if [[ ! -x $file ]]; then
            echo "FAILED: $file begins as a script, and is not executable"
            exit 1
        fi
    elif [[ $file == *.sh ]]; then
        echo "FAILED: $file does not say on its first line which shell it is for"
        exit 1
    fi
done < <(find . \( -path ./build -o -path ./.git \) -prune -o -type f -print | sed 's,^\./,,')

if [[ " ${scripts[*]} " != *" test.sh "* ]]; then
    echo "FAILED: the search for scripts does not find test.sh"
    exit 1
fi
echo "${#scripts[@]} scripts"
shellcheck -x "${scripts[@]}"
