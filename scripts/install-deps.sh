#!/usr/bin/env bash
# Installs the Debian packages the project builds and runs with, when any is missing.
# As root it installs them; otherwise it prints the command to run and fails.
set -euo pipefail

packages=(
  g++ cmake ninja-build pkg-config make
  libpugixml-dev libexpat1-dev libsqlite3-dev libxxhash-dev
  libgtest-dev libgmock-dev libbenchmark-dev
  qt6-base-dev fonts-noto-cjk fonts-dejavu-core
  xvfb xauth
  zsh fish gettext
  libxlsxwriter-dev unzip
  dpkg-dev file
  clang libclang-rt-dev
)

missing=()
for p in "${packages[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed"; then
    missing+=("$p")
  fi
done

[ ${#missing[@]} -eq 0 ] && exit 0

cmd="apt-get install -y --no-install-recommends ${missing[*]}"
if [ "$(id -u)" -ne 0 ]; then
  echo "Missing packages: ${missing[*]}" >&2
  echo "Run as root: apt-get update && $cmd" >&2
  exit 1
fi
echo "Installing: ${missing[*]}"
export DEBIAN_FRONTEND=noninteractive
apt-get update -qq
$cmd
