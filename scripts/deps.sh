#!/usr/bin/env bash
# Installs the Debian packages the build needs, once. Quiet when all are present.
set -euo pipefail

packages=(
  build-essential cmake pkg-config python3
  qtbase5-dev qtbase5-dev-tools libqt5xml5 qttools5-dev qttools5-dev-tools libqt5svg5-dev
  libboost-dev
  libgdal-dev gdal-bin
  libmuparser-dev
  libgraphviz-dev
  libgtest-dev googletest
  python3-gdal
  snakemake
)
if [ "${WITH_FUZZ:-0}" = 1 ]; then packages+=(clang libclang-rt-14-dev); fi
if [ "${WITH_COVERAGE:-0}" = 1 ]; then packages+=(gcovr); fi

missing=()
for p in "${packages[@]}"; do
  status=$(dpkg-query -W -f='${Status}' "$p" 2>/dev/null || true)
  [ "$status" = "install ok installed" ] || missing+=("$p")
done
[ ${#missing[@]} -eq 0 ] && exit 0

echo "Installing missing packages: ${missing[*]}"
SUDO=""
[ "$(id -u)" -eq 0 ] || SUDO="sudo"
export DEBIAN_FRONTEND=noninteractive
$SUDO apt-get update -qq
$SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
