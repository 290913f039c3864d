#!/usr/bin/env bash
# Builds the libFuzzer targets of fuzz/ and runs each of them for a while on its seed corpus.
#   scripts/fuzz.sh [--seconds N] [target ...]
#     --seconds N   run time of each target (default 60)
#     target ...    only these targets (default: every fuzz_* target)
# Build folder: build/fuzz (clang, RelWithDebInfo, AddressSanitizer + UndefinedBehaviorSanitizer).
# The seed corpora in fuzz/corpus/<target>/ are copied to a scratch folder first, so a run never
# changes the tree; inputs that crash, hang or leak are kept in build/fuzz/artifacts/<target>/.
# Exits non-zero when any target found something.
set -euo pipefail
cd "$(dirname "$0")/.."

seconds=60
targets=()
while (($#)); do
    case "$1" in
        --seconds) seconds=${2:?--seconds needs a number}; shift 2 ;;
        --seconds=*) seconds=${1#*=}; shift ;;
        -h|--help) sed -n '2,10p' "$0"; exit 0 ;;
        -*) echo "unknown option: $1" >&2; exit 2 ;;
        *) targets+=("$1"); shift ;;
    esac
done
[[ $seconds =~ ^[0-9]+$ ]] || { echo "--seconds needs a whole number" >&2; exit 2; }
if ((${#targets[@]} == 0)); then
    for dir in fuzz/corpus/*/; do targets+=("$(basename "$dir")"); done
fi

cxx=${FUZZ_CXX:-clang++}
cc=${FUZZ_CC:-clang}
command -v "$cxx" > /dev/null || { echo "fuzzing needs clang with libFuzzer ($cxx not found)" >&2; exit 1; }

echo "== building fuzz targets (build/fuzz)"
CC=$cc CXX=$cxx cmake -S . -B build/fuzz -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
    -DCMAKE_UNITY_BUILD=ON -DCMAKE_UNITY_BUILD_BATCH_SIZE=12 -DDLV_FUZZ=ON \
    -DBUILD_TESTING=OFF -DDLV_BUILD_HOST=OFF -DDLV_BUILD_BENCH=OFF > /dev/null
cmake --build build/fuzz -j "$(nproc)" --target "${targets[@]}"

export QT_QPA_PLATFORM=offscreen
export ASAN_OPTIONS="detect_leaks=1:abort_on_error=1:${ASAN_OPTIONS:-}"
export UBSAN_OPTIONS="print_stacktrace=1:halt_on_error=1:${UBSAN_OPTIONS:-}"
export LSAN_OPTIONS="suppressions=$PWD/tests/support/lsan.supp:${LSAN_OPTIONS:-}"

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
failed=()
for target in "${targets[@]}"; do
    binary=build/fuzz/fuzz/$target
    [ -x "$binary" ] || { echo "no fuzz target $target" >&2; exit 2; }
    corpus=$scratch/$target
    artifacts=build/fuzz/artifacts/$target
    mkdir -p "$corpus" "$artifacts"
    cp -r "fuzz/corpus/$target/." "$corpus/"
    echo "== $target, ${seconds}s"
    status=0
    "$binary" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 -print_final_stats=1 \
        -artifact_prefix="$artifacts/" "$corpus" > "$scratch/$target.log" 2>&1 || status=$?
    # The last status line (executions, coverage) and the final statistics.
    grep -E '^#[0-9]+' "$scratch/$target.log" | tail -n 1 || true
    grep -E '^stat::(number_of_executed_units|peak_rss_mb)' "$scratch/$target.log" || true
    if ((status != 0)); then
        failed+=("$target")
        grep -E -A 40 '^==[0-9]+==ERROR|invariant broken|runtime error|SUMMARY' \
            "$scratch/$target.log" | head -n 80 >&2 || true
        cp "$scratch/$target.log" "$artifacts/last-run.log"
        echo "!! $target found a problem; inputs in $artifacts/" >&2
    fi
done

if ((${#failed[@]})); then
    echo "fuzzing found problems in: ${failed[*]}" >&2
    exit 1
fi
echo "fuzzing: no findings"
