#!/usr/bin/env bash
# Installs what is missing, builds, creates a demo database on first use and starts LevyDesk on it.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build=${LEVYDESK_BUILD_DIR:-$root/build}
"$root/scripts/setup.sh"
"$root/scripts/build.sh"
db=${1:-$root/demo/KestLevyDsk2013.sqlite}
if [ ! -f "$db" ]; then
    mkdir -p "$(dirname "$db")"
    echo "Creating a demo database at $db"
    "$build/levydesk" --create-demo "$db"
fi
exec "$build/levydesk" --database "$db"
