#!/usr/bin/env bash
# Proves that TRV5Charts works as an installed CMake package: builds the library in Release,
# installs it into build/install, then configures, builds and runs the project in
# examples/consumer against that prefix, as a project outside this tree would use it.
#
# The library is built in build/release (the tree scripts/test.sh builds, so after the tests
# nothing is compiled twice); TRV5_BUILD_DIR names another build directory.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/install-deps.sh

build_dir="${TRV5_BUILD_DIR:-build/release}"
prefix="$PWD/build/install"
consumer_dir=build/consumer

cmake --preset release -B "$build_dir"
cmake --build "$build_dir" -j "$(nproc)"
rm -rf "$prefix" "$consumer_dir"
cmake --install "$build_dir" --prefix "$prefix"

# The installed Designer plugin must find the installed library, not the one in the build tree.
plugin="$(find "$prefix" -path '*/designer/libtrv5chartsdesigner.so' -print -quit)"
if [ -n "$plugin" ]; then
    resolved="$(ldd "$plugin" | grep 'libTRV5Charts\.so')"
    case "$resolved" in
        *"=> $prefix/"*) echo "Designer plugin: $plugin" ;;
        *) echo "error: the installed Designer plugin does not load the installed library:" \
                "$resolved" >&2
           exit 1 ;;
    esac
fi

cmake -S examples/consumer -B "$consumer_dir" -G Ninja -DCMAKE_BUILD_TYPE=Release \
    -DCMAKE_PREFIX_PATH="$prefix"
cmake --build "$consumer_dir" -j "$(nproc)"
QT_QPA_PLATFORM=offscreen "$consumer_dir"/trv5_consumer
