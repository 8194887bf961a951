#!/usr/bin/env bash
# Installs what is missing, builds, and runs the station's main job on the
# embedded sample: the scanners that the sample Scan.conf gives this machine.
set -euo pipefail
cd "$(dirname "$0")"
scripts/install-deps.sh
scripts/build.sh build

# The sample station: a Scan.conf made for this host, unless one is configured.
host=$(uname -n | cut -d. -f1)
etc=${SCAN_ETC:-${XDG_CONFIG_HOME:-$HOME/.config}/scanstation}
if [ ! -f "$etc/Scan.conf" ]; then
  mkdir -p "$etc"
  sed "s/@HOST@/$host/g" samples/Scan.conf > "$etc/Scan.conf"
  echo "Wrote a sample Scan.conf for host '$host' to $etc/Scan.conf"
fi
export SCAN_ETC=$etc

echo "== Scanners of $etc/Scan.conf on host '$host' =="
exec build/bin/scanctl scanners "$etc/Scan.conf"
