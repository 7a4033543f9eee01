#!/usr/bin/env bash
# Installs the Debian packages that building, testing and running TRV5Charts needs, when they
# are missing. Safe to run again: it does nothing when everything is present.
set -euo pipefail

packages=(
    build-essential cmake ninja-build pkg-config
    qt6-base-dev libgl-dev qt6-tools-dev
    # Qt Designer's CMake package needs the OpenGL widgets development files.
    libqt6opengl6-dev
    libpugixml-dev libqcustomplot-dev
    libgtest-dev libbenchmark-dev
    clang-format
)
# The fuzz targets need clang and its libFuzzer runtime.
if [ "${1:-}" = "--with-fuzz" ]; then
    packages+=(clang libclang-rt-14-dev)
fi

missing=()
for package in "${packages[@]}"; do
    if ! dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q "install ok installed"; then
        missing+=("$package")
    fi
done

if [ ${#missing[@]} -eq 0 ]; then
    exit 0
fi

echo "Installing missing packages: ${missing[*]}"
if [ "$(id -u)" -eq 0 ]; then
    apt_get=(apt-get)
elif command -v sudo >/dev/null 2>&1; then
    apt_get=(sudo apt-get)
else
    echo "error: packages are missing (${missing[*]}) and this user cannot install them;" >&2
    echo "       run this script as root or install them with apt-get." >&2
    exit 1
fi
export DEBIAN_FRONTEND=noninteractive
"${apt_get[@]}" update -qq
"${apt_get[@]}" install -y -qq --no-install-recommends "${missing[@]}"
