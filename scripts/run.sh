#!/usr/bin/env bash
# Builds TRV5Charts and runs the example host on its built-in simulated run.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/install-deps.sh
cmake --preset release
cmake --build --preset release -j "$(nproc)" --target trv5_example_host
if [ -z "${DISPLAY:-}" ] && [ -z "${WAYLAND_DISPLAY:-}" ]; then
    export QT_QPA_PLATFORM=offscreen
fi
exec ./build/release/apps/example/trv5_example_host "$@"
