#!/usr/bin/env bash
# Builds TRV5Charts in Release and runs every test suite.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/install-deps.sh
cmake --preset release
cmake --build --preset release -j "$(nproc)"
ctest --preset release
