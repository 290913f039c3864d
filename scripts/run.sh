#!/usr/bin/env bash
# The main job: the reference host application dlv-host on its built-in demo organisation.
# Arguments are passed on to dlv-host (dlv-host --help; docs/host-protocol.md, "Reference host").
# Without a display (no DISPLAY or WAYLAND_DISPLAY, QT_QPA_PLATFORM unset) dlv-host renders the
# demo to a PNG in the temporary folder and says where.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/deps.sh

cmake -S . -B build/release -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo > /dev/null
cmake --build build/release -j "$(nproc)" --target dlv-host
exec build/release/src/host/dlv-host "$@"
