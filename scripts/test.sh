#!/usr/bin/env bash
# Builds everything and runs every test headless, the way CI does.
#   scripts/test.sh              normal build and tests, then the same tests under
#                                AddressSanitizer + UndefinedBehaviorSanitizer, then a short
#                                run of every fuzz target on its seed corpus
#   scripts/test.sh --quick      the normal build and tests only
#   scripts/test.sh --sanitize   the sanitizer build and tests only
# Build folders: build/release, build/asan (and build/fuzz, see scripts/fuzz.sh).
set -euo pipefail
cd "$(dirname "$0")/.."

normal=1 sanitize=1 fuzz=1
for arg in "$@"; do
    case "$arg" in
        --quick) sanitize=0 fuzz=0 ;;
        --sanitize) normal=0 fuzz=0 ;;
        -h|--help) sed -n '2,8p' "$0"; exit 0 ;;
        *) echo "unknown option: $arg" >&2; exit 2 ;;
    esac
done

scripts/deps.sh
export QT_QPA_PLATFORM=offscreen
passed=0 failed=0
# Runs ctest and adds its counts to the totals printed at the end.
run_ctest() {
    local log
    log=$(mktemp)
    local status=0
    ctest --test-dir "$1" --output-on-failure -j "$jobs" 2>&1 | tee "$log" || status=$?
    local total fails
    total=$(sed -n 's/.*tests failed out of \([0-9]*\).*/\1/p' "$log" | tail -1)
    fails=$(sed -n 's/.*, \([0-9]*\) tests failed out of.*/\1/p' "$log" | tail -1)
    rm -f "$log"
    passed=$((passed + ${total:-0} - ${fails:-0}))
    failed=$((failed + ${fails:-0}))
    return "$status"
}
jobs=$(nproc)
# Unity builds merge each target's sources into a few translation units: a cold build takes
# minutes instead of many, which keeps CI well inside its time.
common_args=(-G Ninja -DCMAKE_UNITY_BUILD=ON -DCMAKE_UNITY_BUILD_BATCH_SIZE=12)

if ((normal)); then
    echo "== normal build and tests (build/release)"
    cmake -S . -B build/release "${common_args[@]}" -DCMAKE_BUILD_TYPE=RelWithDebInfo > /dev/null
    cmake --build build/release -j "$jobs"
    run_ctest build/release
fi

if ((sanitize)); then
    echo "== AddressSanitizer + UndefinedBehaviorSanitizer build and tests (build/asan)"
    export ASAN_OPTIONS="detect_leaks=1:abort_on_error=1:${ASAN_OPTIONS:-}"
    export UBSAN_OPTIONS="print_stacktrace=1:halt_on_error=1:${UBSAN_OPTIONS:-}"
    export LSAN_OPTIONS="suppressions=$PWD/tests/support/lsan.supp:${LSAN_OPTIONS:-}"
    cmake -S . -B build/asan "${common_args[@]}" -DCMAKE_BUILD_TYPE=Debug -DDLV_SANITIZE=ON \
        -DDLV_BUILD_BENCH=OFF > /dev/null
    cmake --build build/asan -j "$jobs"
    run_ctest build/asan
fi

if ((fuzz)) && [ -x scripts/fuzz.sh ]; then
    echo "== fuzz targets, briefly, on their seed corpora (build/fuzz)"
    scripts/fuzz.sh --seconds 20
fi

echo "tests: $passed passed, $failed failed"
