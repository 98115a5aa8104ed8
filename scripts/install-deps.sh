#!/usr/bin/env bash
# Installs the Debian packages Velmora needs to build, run and test, and only those missing.
# `install-deps.sh deb` adds what making and checking the Debian package needs.
set -euo pipefail
packages=(build-essential cmake pkg-config qt6-base-dev qt6-qpa-plugins qt6-image-formats-plugins
          libsqlite3-dev mdbtools-dev
          xvfb xauth fonts-dejavu-core clang libclang-rt-14-dev mdbtools
          libcdio-dev libiso9660-dev libdiscid-dev xorriso chromium libical-dev)
if [ "${1:-}" = "deb" ]; then
    packages+=(dpkg-dev lintian desktop-file-utils appstream)
fi
missing=()
for package in "${packages[@]}"; do
    if ! dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q "install ok installed"; then
        missing+=("$package")
    fi
done
[ ${#missing[@]} -eq 0 ] && exit 0
echo "Installing: ${missing[*]}"
sudo=""
[ "$(id -u)" -ne 0 ] && sudo="sudo"
$sudo apt-get update
$sudo env DEBIAN_FRONTEND=noninteractive apt-get install -y --no-install-recommends "${missing[@]}"
