#!/usr/bin/env bash
# Builds and tests everything, from a fresh Debian 12 onward:
#   ./test.sh
# The last line is "N passed, N failed, N skipped". The exit status is 0 only when nothing failed and
# nothing was skipped but what tests/expected-skips.txt lists. Each preset that cannot be built, and
# each stage that cannot run, counts as one failed.
set -euo pipefail
cd "$(dirname "$0")"
exec </dev/null 3>&1

passed=0
failed=0
skipped=0
unexpected_skips=0
finished=no
slow_pid=""
begin=$SECONDS

# Also when stopped amid a stage whose output goes elsewhere.
summary() {
    local status=$?
    exec >&3 2>&3
    [[ -z $slow_pid ]] || kill -- "-$slow_pid" 2>/dev/null || true
    if [[ $finished != yes ]]; then
        echo
        echo "STOPPED before the end (status $status): counted as one failed."
        failed=$((failed + 1))
    fi
    echo "$passed passed, $failed failed, $skipped skipped"
    if ((failed > 0 || unexpected_skips > 0)); then
        exit 1
    fi
}
trap summary EXIT
trap 'exit 130' INT
trap 'exit 143' TERM

# stage <what happens, in words> <command>...: runs it and tells how long it took; a stage that
# fails counts as one failed.
stage() {
    local words=$1 start=$SECONDS
    shift
    echo
    echo "== $words"
    if "$@"; then
        echo "-- done in $((SECONDS - start)) s"
    else
        failed=$((failed + 1))
        echo "-- FAILED after $((SECONDS - start)) s: $words"
        return 1
    fi
}

# Configures and builds a preset; its output is shown only when that fails.
build_preset() {
    local log="build/$1.log"
    mkdir -p build
    if { "$run" cmake --preset "$1" && "$run" cmake --build --preset "$1"; } >"$log" 2>&1; then
        return 0
    fi
    # What failed and what the compiler said of it, not the steps that went well.
    grep -vE '^(\[[0-9]+/[0-9]+\]|-- )' "$log" | head -n 200
    echo "(all of it: $log)"
    return 1
}

is_expected_skip() {
    grep -qxF -- "$1" <(grep -vE '^(#|$)' tests/expected-skips.txt)
}

# Adds a JUnit file of ctest to the totals. A test that ctest could not start is "notrun" there as a
# skipped one is, but without a reason that begins with SKIP_: it counts as failed.
count_results() {
    local name status
    while IFS=$'\t' read -r status name; do
        case $status in
        run) passed=$((passed + 1)) ;;
        skipped)
            skipped=$((skipped + 1))
            if is_expected_skip "$name"; then
                echo "skipped, as expected: $name"
            else
                unexpected_skips=$((unexpected_skips + 1))
                echo "SKIPPED, which tests/expected-skips.txt does not list: $name"
            fi
            ;;
        *)
            failed=$((failed + 1))
            counted_failures=$((counted_failures + 1))
            ;;
        esac
    done < <(awk '
        function tell() { if (status != "") print status "\t" name }
        /^\t<testcase / {
            tell()
            name = $0; sub(/^\t<testcase name="/, "", name); sub(/" classname=.*/, "", name)
            gsub(/&lt;/, "<", name); gsub(/&gt;/, ">", name); gsub(/&quot;/, "\"", name)
            gsub(/&amp;/, "\\&", name)
            status = $0; sub(/.* status="/, "", status); sub(/".*/, "", status)
            if (status == "disabled") status = "skipped"
        }
        /^\t\t<skipped message="SKIP_/ { if (status == "notrun") status = "skipped" }
        END { tell() }' "$1")
}

# with_ctest <name> <preset> <ctest argument>...: runs tests of a built preset; what comes out is in
# build/<name>.junit.xml, and all that is said in build/<name>.ctest.log.
with_ctest() {
    local name=$1 preset=$2
    shift 2
    rm -f "build/$name.junit.xml"
    "$run" ctest --test-dir "build/$preset" --output-on-failure --no-tests=error --timeout 300 \
        --output-junit "$PWD/build/$name.junit.xml" "$@" >"build/$name.ctest.log" 2>&1
}

# add_up <name> <ctest's status> <when it was started>: adds what came out of with_ctest to the totals.
add_up() {
    local junit="build/$1.junit.xml" log="build/$1.ctest.log" status=$2 start=$3
    counted_failures=0
    if [[ -s $junit ]]; then
        count_results "$junit"
    fi
    if ((status == 0 && counted_failures == 0)) && [[ -s $junit ]]; then
        grep -E '^[0-9]+% tests passed' "$log"
        echo "-- done in $((SECONDS - start)) s"
        return 0
    fi
    # What went well is only noise above what did not.
    grep -vE '^ *[0-9]+/[0-9]+ Test .* Passed |^ +Start +[0-9]+: ' "$log" || true
    if ((counted_failures == 0)); then
        failed=$((failed + 1))
        echo "ctest itself failed (status $status) without naming a failed test: counted as one failed."
    fi
    echo "-- FAILED after $((SECONDS - start)) s; all of it: $log"
}

# run_tests <name> <preset> <ctest argument>...
run_tests() {
    local name=$1 status=0 start=$SECONDS
    # Twice as many tests as processors: most of them wait for time-outs most of the time.
    with_ctest "$@" -j "$((2 * $(nproc)))" || status=$?
    add_up "$name" "$status" "$start"
}

# The sanitizers' run-time libraries want memory where a kernel with much address randomisation may
# not leave it free; their programs, which the build starts too, run without randomisation where that
# is allowed.
plainly() { "$@"; }
unrandomised() { setarch "$(uname -m)" -R "$@"; }
# On what everything else leaves of the processors, which nothing notices that has to be in time.
idly() {
    if chrt --idle 0 true 2>/dev/null; then
        chrt --idle 0 "$@"
    else
        nice -n 19 "$@"
    fi
}

# test_preset <preset> <what it is, in words> <ctest argument>...
test_preset() {
    local preset=$1 words=$2
    shift 2
    if stage "Building $words" build_preset "$preset"; then
        built+=" $preset "
        echo
        echo "== Running the tests of it"
        run_tests "$preset" "$preset" "$@"
    fi
}

# These two want the processors for minutes and care for no clock: they run beside the tests, which
# wait for most of their time.
slow_checks='^checks\.(tidy|macos-cross-build)$'
start_slow_checks() {
    slow_begin=$SECONDS
    set -m # a process group of its own, to be ended with all that it starts
    run=idly with_ctest slow-checks release -R "$slow_checks" &
    slow_pid=$!
    set +m
}
finish_slow_checks() {
    local status=0
    wait "$slow_pid" || status=$?
    slow_pid=""
    add_up slow-checks "$status" "$slow_begin"
}

export UBSAN_OPTIONS=${UBSAN_OPTIONS-print_stacktrace=1}
built=""
run=plainly
if stage "Looking for the Debian packages that building and testing need" \
    scripts/install-packages.sh test; then
    if stage "Building the program as users run it (GCC, optimised)" build_preset release; then
        built+=" release "
        echo
        echo "== Running the tests of it; on what these leave of the processors, in the meantime: looking" \
            "for faults in the sources, and the macOS cross build"
        start_slow_checks
        run_tests release release -LE 'checks|kernel'
        echo
        echo "== Running the programs on the system's own serial drivers, in emulated machines"
        run_tests kernel release -L kernel
    fi
    if unrandomised true 2>/dev/null; then
        run=unrandomised
    fi
    test_preset asan "with the address and undefined-behaviour sanitizers (Clang)"
    test_preset tsan "with the thread sanitizer (Clang)"
    run=plainly
    if [[ $built == *" release "* ]]; then
        echo
        echo "== Checking the tree: layout of the sources, scripts, documents, layers, use from another build"
        run_tests checks release -L checks -E "$slow_checks"
        echo
        echo "== What came out of looking for faults in the sources, and of the macOS cross build"
        finish_slow_checks
    else
        echo
        echo "== The checks cannot run without the release build: counted as one failed."
        failed=$((failed + 1))
    fi
fi

echo
echo "The whole of it took $((SECONDS - begin)) s."
finished=yes
