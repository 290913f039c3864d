#!/usr/bin/env bash
# Installs the Debian packages the build, the tests and the reference host need. Idempotent: when
# everything is present it only asks dpkg and returns at once.
set -euo pipefail

packages=(
    g++ cmake ninja-build ccache pkg-config
    qt6-base-dev qt6-charts-dev libqt6opengl6-dev libqt6sql6-sqlite libpugixml-dev libgtest-dev
    qt6-l10n-tools qt6-tools-dev qt6-translations-l10n
    xvfb xauth fonts-dejavu-core poppler-utils python3
    clang libclang-rt-14-dev
    # Qt's PostgreSQL driver, for dlv-host --db postgresql://... The server itself (postgresql)
    # is left out on purpose: its test runs only where one is installed.
    libqt6sql6-psql
)

missing=()
for p in "${packages[@]}"; do
    if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed'; then
        missing+=("$p")
    fi
done

if ((${#missing[@]})); then
    echo "Installing: ${missing[*]}"
    sudo_cmd=()
    [ "$(id -u)" -eq 0 ] || sudo_cmd=(sudo)
    "${sudo_cmd[@]}" apt-get update -qq
    DEBIAN_FRONTEND=noninteractive "${sudo_cmd[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}"
fi
