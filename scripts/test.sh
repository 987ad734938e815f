#!/usr/bin/env bash
# Installs what is missing, builds and runs every test.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build=${LEVYDESK_BUILD_DIR:-$root/build}
"$root/scripts/setup.sh"
"$root/scripts/build.sh"
cd "$build"
ctest --output-on-failure -j2
