#!/bin/bash
# Installs the Debian packages the build, the tests and the game need,
# touching the network only when something is missing.
set -euo pipefail

PACKAGES=(g++ cmake ninja-build make libsfml-dev libx11-dev libgtest-dev libbenchmark-dev
          xvfb xdotool tmux imagemagick fonts-dejavu-core clang libclang-rt-14-dev
          python3)

missing=()
for package in "${PACKAGES[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q "install ok installed"; then
    missing+=("$package")
  fi
done

if [ ${#missing[@]} -eq 0 ]; then
  exit 0
fi

echo "Installing: ${missing[*]}"
SUDO=""
if [ "$(id -u)" -ne 0 ]; then
  SUDO="sudo"
fi
export DEBIAN_FRONTEND=noninteractive
$SUDO apt-get update -q
$SUDO apt-get install -y -q --no-install-recommends "${missing[@]}"
