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
begin=$SECONDS

# Also when stopped amid a stage whose output goes elsewhere.
summary() {
    local status=$?
    exec >&3 2>&3
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

# Writes that tests excused because the machine stood still in the middle (tests/support/HeldUp.h). In more
# than a few it was not the machine.
count_held_up() {
    local count
    count=$(grep -c 'A write is made anew because the machine was held up' "$1") || true
    if ((count > 0)); then
        echo "writes made anew because the machine was held up: $count"
    fi
    if ((count > 3)); then
        failed=$((failed + 1))
        counted_failures=$((counted_failures + 1))
        echo "FAILED: that is too many"
    fi
}

# run_tests <preset> <ctest argument>...: runs tests of a built preset and adds up what came out.
run_tests() {
    local preset=$1 status=0 start=$SECONDS
    local junit="$PWD/build/$preset/junit.xml" log="build/$preset.ctest.log"
    shift
    rm -f "$junit"
    # Twice as many tests as processors: most of them wait for time-outs most of the time.
    "$run" ctest --test-dir "build/$preset" -j "$((2 * $(nproc)))" --output-on-failure --no-tests=error \
        --timeout 300 --output-junit "$junit" "$@" >"$log" 2>&1 || status=$?
    counted_failures=0
    if [[ -s $junit ]]; then
        count_results "$junit"
        count_held_up "build/$preset/Testing/Temporary/LastTest.log"
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

# The sanitizers' run-time libraries want memory where a kernel with much address randomisation may
# not leave it free; their programs, which the build starts too, run without randomisation where that
# is allowed.
plainly() { "$@"; }
unrandomised() { setarch "$(uname -m)" -R "$@"; }

# test_preset <preset> <what it is, in words> <ctest argument>...
test_preset() {
    local preset=$1 words=$2
    shift 2
    if stage "Building $words" build_preset "$preset"; then
        built+=" $preset "
        echo
        echo "== Running the tests of it"
        run_tests "$preset" "$@"
    fi
}

export UBSAN_OPTIONS=${UBSAN_OPTIONS-print_stacktrace=1}
built=""
run=plainly
if stage "Looking for the Debian packages that building and testing need" \
    scripts/install-packages.sh test; then
    test_preset release "the program as users run it (GCC, optimised)" -LE 'checks|kernel'
    if [[ $built == *" release "* ]]; then
        echo
        echo "== Running the programs on the system's own serial drivers, in emulated machines"
        run_tests release -L kernel
    fi
    if unrandomised true 2>/dev/null; then
        run=unrandomised
    fi
    test_preset asan "with the address and undefined-behaviour sanitizers (Clang)"
    test_preset tsan "with the thread sanitizer (Clang)"
    run=plainly
    if [[ $built == *" release "* ]]; then
        echo
        echo "== Checking the tree: layout and faults of the sources, scripts, documents, layers," \
            "the macOS cross build, use from another build"
        run_tests release -L checks
    else
        echo
        echo "== The checks cannot run without the release build: counted as one failed."
        failed=$((failed + 1))
    fi
fi

echo
echo "The whole of it took $((SECONDS - begin)) s."
finished=yes
