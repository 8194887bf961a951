#!/usr/bin/env bash
# Installs what the project builds, tests and runs with, from Debian 12's
# packages. Idempotent: packages already present are not asked for again.
set -euo pipefail

packages=(
  build-essential cmake ninja-build ccache pkg-config
  qt6-base-dev qt6-base-dev-tools
  libtiff-dev
  libgtest-dev libgmock-dev libbenchmark-dev libopencv-imgproc-dev libpotrace-dev
  clang libclang-rt-14-dev
  libqt6sql6-sqlite libqt6sql6-psql libsqlite3-dev postgresql
  locales
)

missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done

if [ ${#missing[@]} -gt 0 ]; then
  echo "Installing: ${missing[*]}"
  SUDO=""
  [ "$(id -u)" -ne 0 ] && SUDO="sudo"
  $SUDO apt-get update -qq
  DEBIAN_FRONTEND=noninteractive $SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}"
fi
