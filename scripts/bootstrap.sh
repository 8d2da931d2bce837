#!/usr/bin/env bash
# Installs what building and testing PallixRuntime needs on a Debian machine. As root it runs
# apt-get for the missing packages; otherwise it prints the command to run and fails.
set -euo pipefail

packages=(
    cmake ninja-build g++ clang libclang-rt-14-dev pkg-config binutils
    libpugixml-dev nlohmann-json3-dev libcli11-dev
    qtbase5-dev libgtest-dev libgmock-dev libbenchmark-dev abigail-tools
    xvfb xauth tzdata
    # Locale sources: a test compiles a locale with a decimal comma from them.
    locales
    # Glyphs for the Chinese texts of the desktop example; without a CJK font they are boxes.
    fonts-wqy-microhei
)

missing=()
for package in "${packages[@]}"; do
    if ! dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q "install ok installed"; then
        missing+=("$package")
    fi
done

if [ ${#missing[@]} -eq 0 ]; then
    exit 0
fi

if [ "$(id -u)" -eq 0 ]; then
    echo "Installing: ${missing[*]}"
    export DEBIAN_FRONTEND=noninteractive
    apt-get update -qq
    apt-get install -y -qq --no-install-recommends "${missing[@]}"
else
    echo "These packages are missing: ${missing[*]}" >&2
    echo "Install them with:" >&2
    echo "    sudo apt-get update && sudo apt-get install -y ${missing[*]}" >&2
    exit 1
fi
