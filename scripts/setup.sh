#!/usr/bin/env bash
# Installs every Debian package that LevyDesk needs to build, run and test.
# Safe to run again: it installs only what is missing.
set -euo pipefail

packages=(
    # build
    cmake ninja-build ccache g++ pkg-config
    # the fuzz targets: clang with its libFuzzer runtime
    clang libclang-rt-14-dev
    qt6-base-dev qt6-base-dev-tools libqt6sql6-sqlite libgl-dev
    libsqlite3-dev libzint-dev libzip-dev zlib1g-dev libcurl4-openssl-dev
    # fonts the reports ask for (Arial, Arial Narrow, Courier New)
    fonts-liberation2 fonts-liberation fontconfig
    # tests: read printed output and bar codes back, a local mail server
    poppler-utils zbar-tools python3-aiosmtpd openssl sqlite3 locales
    # tests: one real print job through CUPS to a PDF queue
    cups printer-driver-cups-pdf
)

missing=()
for p in "${packages[@]}"; do
    if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed"; then
        missing+=("$p")
    fi
done

as_root() {
    if [ "$(id -u)" -eq 0 ]; then "$@"; else sudo "$@"; fi
}

if [ ${#missing[@]} -gt 0 ]; then
    echo "Installing: ${missing[*]}"
    as_root apt-get update -qq
    as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}"
fi

# The tests run under a German locale to prove that nothing depends on it.
if ! locale -a 2>/dev/null | grep -qi '^de_DE\.utf-\?8$'; then
    if [ -f /etc/locale.gen ]; then
        as_root sed -i 's/^# *\(de_DE.UTF-8 UTF-8\)/\1/' /etc/locale.gen
        grep -q '^de_DE.UTF-8 UTF-8' /etc/locale.gen || echo 'de_DE.UTF-8 UTF-8' | as_root tee -a /etc/locale.gen >/dev/null
        as_root locale-gen >/dev/null
    fi
fi
