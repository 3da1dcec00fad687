#!/usr/bin/env bash
# Runs fuzz targets for a while, one after the other, on what a processor has to spare:
#   scripts/fuzz.sh [--minutes M] [target...]     20 minutes each; all of them when none is named
#   scripts/fuzz.sh --merge [target...]           brings what was found into the tree's corpus
# What a target found so far stays in build/fuzz/<target>/corpus, and the next run goes on from there. An
# input that fails is in build/fuzz/<target>/crashes and ends its target's run; the program of the target
# runs it again when it is called with it. The status is 0 when there was none.
set -euo pipefail
cd "$(dirname "$0")/.."

minutes=20
merge=no
targets=()
while (($# > 0)); do
    case $1 in
    --minutes) minutes=${2:?"--minutes wants a number"} && shift ;;
    --merge) merge=yes ;;
    -*) sed -nE '2,4s/^# ?//p' "$0" >&2 && exit 2 ;;
    *) targets+=("$1") ;;
    esac
    shift
done

mkdir -p build
cmake --preset asan >build/fuzz.log 2>&1 || { cat build/fuzz.log; exit 1; }
if ((${#targets[@]} == 0)); then
    for call_file in build/asan/fuzz/*.call; do
        targets+=("$(basename "$call_file" .call)")
    done
fi
for target in "${targets[@]}"; do
    [[ -f build/asan/fuzz/$target.call ]] || { echo "there is no fuzz target $target" >&2; exit 2; }
done
cmake --build --preset asan --target "${targets[@]/#/fuzz_}" >build/fuzz.log 2>&1 ||
    { cat build/fuzz.log; exit 1; }

# The sanitizer's run-time library wants memory that randomised addresses may take from it.
quietly=(nice -n 19)
if setarch "$(uname -m)" -R true 2>/dev/null; then
    quietly+=(setarch "$(uname -m)" -R)
fi

# last <log> <pattern>: what the pattern's group stands for in the last line that has it.
last() {
    sed -nE "s/.*$2.*/\\1/p" "$1" | tail -n 1
}

run_target() {
    local target=$1 place="build/fuzz/$1" log="build/fuzz/$1/log" call
    local TIMEFORMAT="%U %S"
    mkdir -p "$place/corpus" "$place/crashes"
    mapfile -t call <"build/asan/fuzz/$target.call"
    {
        time "${quietly[@]}" "${call[@]}" -max_total_time="$(awk "BEGIN { print int($minutes * 60) }")" \
            -timeout=10 -print_final_stats=1 -artifact_prefix="$place/crashes/" \
            "$place/corpus" "tests/fuzz/corpus/$target" >"$log" 2>&1 || failed=$((failed + 1))
    } 2>"$place/seconds"
    printf '%-16s %10s runs, %5s places, %6s features, %5s inputs kept, %5s processor minutes, %s crashes\n' \
        "$target" "$(last "$log" 'number_of_executed_units: ([0-9]+)')" "$(last "$log" ' cov: ([0-9]+)')" \
        "$(last "$log" ' ft: ([0-9]+)')" "$(find "$place/corpus" -type f | wc -l)" \
        "$(awk '{ printf "%.1f", ($1 + $2) / 60 }' "$place/seconds")" "$(find "$place/crashes" -type f | wc -l)"
}

# Copies inputs that reach what none of the tree's reaches; the fuzzer takes the smallest ones first.
merge_target() {
    local target=$1 call before
    mapfile -t call <"build/asan/fuzz/$target.call"
    before=$(find "tests/fuzz/corpus/$target" -type f | wc -l)
    "${quietly[@]}" "${call[@]}" -merge=1 "tests/fuzz/corpus/$target" "build/fuzz/$target/corpus" \
        >"build/fuzz/$target/log" 2>&1 || { tail -n 20 "build/fuzz/$target/log"; failed=$((failed + 1)); }
    echo "$target: $before inputs in the tree before, $(find "tests/fuzz/corpus/$target" -type f | wc -l) now"
}

failed=0
for target in "${targets[@]}"; do
    if [[ $merge == yes ]]; then
        merge_target "$target"
    else
        run_target "$target"
    fi
done
((failed == 0)) || { echo "FAILED: $failed of ${#targets[@]} targets" >&2; exit 1; }
