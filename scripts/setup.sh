#!/usr/bin/env bash
# Installs what the build needs on a Debian 12 machine, but only what is missing.
set -euo pipefail

packages=(cmake g++ ninja-build pkg-config fonts-dejavu-core
          qtbase5-dev libqt5svg5-dev qttools5-dev qttools5-dev-tools
          libqt5sql5-sqlite libqt5sql5-psql faketime xvfb xdotool)

missing=()
for p in "${packages[@]}"; do
    dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done

if [ ${#missing[@]} -gt 0 ]; then
    echo "Installing: ${missing[*]}"
    SUDO=""
    if [ "$(id -u)" -ne 0 ]; then SUDO="sudo"; fi
    $SUDO apt-get update -qq
    DEBIAN_FRONTEND=noninteractive $SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}"
fi
