#!/usr/bin/env bash
# Runs a fuzz target over its corpus in the tree and then over new inputs:
#   tests/fuzz/short-run.sh <build>/fuzz/<name>.call <runs in all>
# The seed is a new one each time and is printed. An input that fails stays beside the call's file,
# and is printed as base64, too.
set -euo pipefail

call_file=$1
runs=$2
name=$(basename "$call_file" .call)
corpus="$(dirname "$0")/corpus/$name"
mapfile -t call <"$call_file"

files=("$corpus"/*)
if [[ ! -f ${files[0]} ]]; then
    echo "FAILED: there is no input in $corpus"
    exit 1
fi
if ((runs <= ${#files[@]})); then
    echo "FAILED: $runs runs leave none for new inputs beside ${#files[@]} of the corpus"
    exit 1
fi
# The fuzzer keeps new inputs in the first folder named, which must not be the tree's.
found=$(mktemp -d)
trap 'rm -rf "$found"' EXIT
"${call[@]}" -runs="$runs" -timeout=10 -print_final_stats=1 \
    -artifact_prefix="$(dirname "$call_file")/$name-" "$found" "$corpus"
