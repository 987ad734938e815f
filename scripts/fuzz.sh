#!/usr/bin/env bash
# Builds the fuzz targets with clang and libFuzzer into build-fuzz/ (or $LEVYDESK_FUZZ_BUILD_DIR)
# and runs each over its checked-in seeds (fuzz/corpus/NAME) for a fixed number of executions.
#   scripts/fuzz.sh [--runs N] [NAME...]     NAME: money, typed_date, ... (the folders of fuzz/corpus)
# New inputs the fuzzer finds go to a scratch folder; the seeds stay as checked in. A crash or
# hang stops the script with the input saved under build-fuzz/artifacts/.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build=${LEVYDESK_FUZZ_BUILD_DIR:-$root/build-fuzz}
runs=20000
names=()
while [ $# -gt 0 ]; do
    case "$1" in
        --runs) runs=$2; shift 2 ;;
        *) names+=("$1"); shift ;;
    esac
done
if [ ${#names[@]} -eq 0 ]; then
    for dir in "$root"/fuzz/corpus/*/; do names+=("$(basename "$dir")"); done
fi

if [ ! -f "$build/build.ninja" ]; then
    CC=clang CXX=clang++ cmake -S "$root" -B "$build" -G Ninja \
        -DCMAKE_BUILD_TYPE=RelWithDebInfo -DLEVYDESK_FUZZ=ON
fi
targets=()
for name in "${names[@]}"; do targets+=("fuzz_$name"); done
cmake --build "$build" --target "${targets[@]}"

mkdir -p "$build/artifacts"
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
export QT_QPA_PLATFORM=offscreen
# Qt's own allocations at exit are not the program's to answer for.
export ASAN_OPTIONS=${ASAN_OPTIONS:-detect_leaks=0}
status=0
for name in "${names[@]}"; do
    mkdir -p "$scratch/$name"
    log="$build/artifacts/$name.log"
    echo "== fuzz_$name: $runs executions"
    if ! "$build/fuzz/fuzz_$name" -runs="$runs" -timeout=10 -rss_limit_mb=2048 -max_len=65536 \
        -print_final_stats=1 -artifact_prefix="$build/artifacts/$name-" \
        "$scratch/$name" "$root/fuzz/corpus/$name" >"$log" 2>&1; then
        status=1
        tail -n 40 "$log"
    fi
    grep -E "^stat::(number_of_executed_units|average_exec_per_sec)|^SUMMARY" "$log" || true
done
exit $status
