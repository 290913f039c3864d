#!/usr/bin/env bash
# Builds everything and runs every test headless.
#   scripts/test.sh              normal build (build/release)
#   scripts/test.sh --sanitize   AddressSanitizer + UndefinedBehaviorSanitizer build (build/asan)
set -euo pipefail
cd "$(dirname "$0")/.."

mode=release
for arg in "$@"; do
    case "$arg" in
        --sanitize) mode=asan ;;
        -h|--help) sed -n '2,4p' "$0"; exit 0 ;;
        *) echo "unknown option: $arg" >&2; exit 2 ;;
    esac
done

scripts/deps.sh

build="build/$mode"
cmake_args=(-G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo)
if [ "$mode" = asan ]; then
    cmake_args=(-G Ninja -DCMAKE_BUILD_TYPE=Debug -DDLV_SANITIZE=ON -DDLV_BUILD_BENCH=OFF)
    export ASAN_OPTIONS="detect_leaks=1:abort_on_error=1:${ASAN_OPTIONS:-}"
    export UBSAN_OPTIONS="print_stacktrace=1:halt_on_error=1:${UBSAN_OPTIONS:-}"
    export LSAN_OPTIONS="suppressions=$PWD/tests/support/lsan.supp:${LSAN_OPTIONS:-}"
fi

export QT_QPA_PLATFORM=offscreen
cmake -S . -B "$build" "${cmake_args[@]}" > /dev/null
cmake --build "$build" -j "$(nproc)"
ctest --test-dir "$build" --output-on-failure -j "$(nproc)"
