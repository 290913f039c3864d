#!/usr/bin/env bash
# The main job: the reference host application on its built-in demo data.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/deps.sh

if [ ! -f src/host/CMakeLists.txt ]; then
    cat <<'MSG'
The reference host application (dlv-host) is not built yet, so there is no demo to show.
When it exists, this command will build it and open the control on the built-in demo
organisation (or, with no display, render the demo to a PNG and say where).
Today the library and its tests build and run with: scripts/test.sh
MSG
    exit 0
fi

cmake -S . -B build/release -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo > /dev/null
cmake --build build/release -j "$(nproc)" --target dlv-host
exec build/release/src/host/dlv-host "$@"
