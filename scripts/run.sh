#!/usr/bin/env bash
# Builds TRV5Charts and runs the gallery: the window when a display is there, otherwise the
# headless mode, which writes every chart's picture, data and saved state into
# build/gallery-output. Arguments are passed on to the gallery (see --help).
# TRV5_BUILD_DIR chooses another build directory than build/release.
set -euo pipefail
cd "$(dirname "$0")/.."
build_dir="${TRV5_BUILD_DIR:-build/release}"
bash scripts/install-deps.sh
cmake --preset release -B "$build_dir"
cmake --build "$build_dir" -j "$(nproc)" --target trv5_gallery
gallery="./$build_dir/apps/gallery/trv5_gallery"
if [ -n "${DISPLAY:-}" ] || [ -n "${WAYLAND_DISPLAY:-}" ]; then
    exec "$gallery" "$@"
fi
output=build/gallery-output
echo "No display: running the gallery without a window"
"$gallery" --output "$output" "$@"
echo "Every chart's picture (.png), data (.txt) and saved state (.xml), and the project file"
echo "gallery.trv5gallery, are in $output"
