#!/usr/bin/env bash
# Installs what is missing, builds and runs every test: the unit and database tests, the
# scenarios, the crash test, and each fuzz target over its seeds.
#   scripts/test.sh              the plain build in build/ (or $LEVYDESK_BUILD_DIR)
#   scripts/test.sh --sanitize   the same tests on a build with AddressSanitizer and
#                                UndefinedBehaviorSanitizer in build-sanitize/
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
"$root/scripts/setup.sh"

if [ "${1:-}" = "--sanitize" ]; then
    build=${LEVYDESK_SANITIZE_BUILD_DIR:-$root/build-sanitize}
    if [ ! -f "$build/build.ninja" ]; then
        cmake -S "$root" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
            -DLEVYDESK_SANITIZE=ON -DLEVYDESK_BENCH=OFF
    fi
    cmake --build "$build"
    export ASAN_OPTIONS=${ASAN_OPTIONS:-detect_leaks=1:abort_on_error=1}
    export UBSAN_OPTIONS=${UBSAN_OPTIONS:-print_stacktrace=1:halt_on_error=1}
    cd "$build"
    ctest --output-on-failure -j2
    exit
fi

build=${LEVYDESK_BUILD_DIR:-$root/build}
"$root/scripts/build.sh"
(cd "$build" && ctest --output-on-failure -j2)
"$root/scripts/fuzz.sh"
