#!/usr/bin/env bash
# Runs fuzz targets for a while on what the processors have to spare:
#   scripts/fuzz.sh [--minutes M] [--jobs N] [target...]
#                        M minutes of processor time for each (20), N targets at a time (one per
#                        processor); all of them when none is named
#   scripts/fuzz.sh --merge [target...]
#                        brings what was found into the tree's corpus
# What a target found so far stays in build/fuzz/<target>/corpus, and the next run goes on from there. An
# input that fails is in build/fuzz/<target>/crashes and ends its target's run; the program of the target
# runs it again when it is called with it. The status is 0 when there was none.
set -euo pipefail
cd "$(dirname "$0")/.."

minutes=20
jobs=$(nproc)
merge=no
targets=()
while (($# > 0)); do
    case $1 in
    --minutes) minutes=${2:?"--minutes wants a number"} && shift ;;
    --jobs) jobs=${2:?"--jobs wants a number"} && shift ;;
    --merge) merge=yes ;;
    -*) sed -nE '2,7s/^# ?//p' "$0" >&2 && exit 2 ;;
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

# The fuzzer knows the clock only, and what it gets of a busy machine is less: it runs for a minute at
# most, again and again, until the processor's time adds up.
run_target() {
    local target=$1 place="build/fuzz/$1" call used=0 status=0
    local log="$place/log" TIMEFORMAT="%U %S"
    mkdir -p "$place/corpus" "$place/crashes"
    mapfile -t call <"build/asan/fuzz/$target.call"
    : >"$log"
    while ((status == 0)) && awk "BEGIN { exit !($used < $minutes * 60) }"; do
        { time "${quietly[@]}" "${call[@]}" \
            -max_total_time="$(awk "BEGIN { rest = $minutes * 60 - $used; print int(rest < 60 ? rest + 1 : 60) }")" \
            -timeout=10 -print_final_stats=1 -artifact_prefix="$place/crashes/" \
            "$place/corpus" "tests/fuzz/corpus/$target" >>"$log" 2>&1; } 2>"$place/seconds" || status=1
        used=$(awk -v used="$used" '{ print used + $1 + $2 }' "$place/seconds")
    done
    printf '%-16s %10s runs, %5s places, %6s features, %5s inputs kept, %5s processor minutes, %s crashes\n' \
        "$target" "$(awk '/number_of_executed_units:/ { runs += $2 } END { print runs + 0 }' "$log")" \
        "$(last "$log" ' cov: ([0-9]+)')" "$(last "$log" ' ft: ([0-9]+)')" \
        "$(find "$place/corpus" -type f | wc -l)" "$(awk "BEGIN { printf \"%.1f\", $used / 60 }")" \
        "$(find "$place/crashes" -type f | wc -l)"
    return "$status"
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
running=()
for target in "${targets[@]}"; do
    if [[ $merge == yes ]]; then
        merge_target "$target"
        continue
    fi
    while (($(jobs -rp | wc -l) >= jobs)); do
        sleep 1
    done
    run_target "$target" &
    running+=($!)
done
for run in "${running[@]}"; do
    wait "$run" || failed=$((failed + 1))
done
((failed == 0)) || { echo "FAILED: $failed of ${#targets[@]} targets" >&2; exit 1; }
