#!/usr/bin/env bash
# Fails when a file includes across the floors the wrong way. The floors, from the ground up:
#   core  ->  reports, bills  ->  desk, rates, distribution, utilities  ->  app
# A file includes from its own floor or below; reports is the ground under bills, not beside it.
# Tests keep the rule of the folder they mirror (tests/reports as src/reports); their shared
# helpers in tests/support and the demo database generator (a fixture) may be included in any
# test. tools/ and tests/tools stand above it all.
# Usage: check_floors.sh ROOT   (the folder holding src/ and tests/)
set -euo pipefail
root=${1:?usage: check_floors.sh ROOT}
cd "$root"

allowed_for() {
    case "$1" in
    core) echo "core" ;;
    reports) echo "core reports" ;;
    bills) echo "core reports bills" ;;
    desk | rates | distribution | utilities) echo "core reports bills desk rates distribution utilities" ;;
    *) echo "*" ;; # app, tools: the top
    esac
}

bad=0
while IFS= read -r file; do
    rel=${file#src/}
    rel=${rel#tests/}
    floor=${rel%%/*}
    allowed=$(allowed_for "$floor")
    [ "$allowed" = "*" ] && continue
    while IFS=: read -r line target; do
        top=${target%%/*}
        [ "$top" = "$target" ] && continue # a file of the same folder
        if [ "${file#tests/}" != "$file" ]; then
            [ "$top" = "support" ] || [ "$top" = "demo" ] && continue
        fi
        case " $allowed " in *" $top "*) ;; *)
            echo "$file:$line: includes \"$target\" from floor '$top', above or beside '$floor'"
            bad=1
            ;;
        esac
    done < <(grep -n -E '^[[:space:]]*#[[:space:]]*include[[:space:]]*"' "$file" |
        sed -E 's/^([0-9]+):[^"]*"([^"]*)".*/\1:\2/')
done < <(find src tests -name '*.h' -o -name '*.cpp' 2>/dev/null | sort)

if [ "$bad" -ne 0 ]; then
    echo "Include rule broken: see the lines above."
    exit 1
fi
echo "Include rule holds."
