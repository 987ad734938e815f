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
    # A demo of this year, its bills mailed three weeks ago: the first payment shows a discount.
    echo "Creating a demo database at $db"
    "$build/levydesk" --create-demo "$db" --tax-year "$(date +%Y)"
fi
exec "$build/levydesk" --database "$db"
