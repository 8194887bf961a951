#!/usr/bin/env bash
# Installs what is missing, builds, and runs the station on the embedded
# sample: a sample Scan.conf for this machine with the test scanner and a
# sample production database. With a display the station's window opens on
# them; without one, a headless scan of twelve drawings of its element runs,
# and a vectorize worker then empties the queue into vector drawings.
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

# The sample production: its own embedded database in the per-user sample
# folder (never the user's real one), with one job, one scene whose folder is
# in the sample folder, and one colour element to be vectorized that exposes
# drawings 1 to 12. Made on first use.
sample=${SCAN_SAMPLE_DIR:-${XDG_DATA_HOME:-$HOME/.local/share}/scanstation/sample}
db=${SCAN_SAMPLE_DB:-$sample/production.db}
scanctl=build/bin/scanctl
mkdir -p "$sample"
if [ ! -f "$db" ]; then
  echo "== Making the sample production database $db =="
  $scanctl db init --db "$db"
  $scanctl db create-job Sample --db "$db"
  $scanctl db create-scene Sample sc01 --path "$sample/sc01" --db "$db"
  $scanctl db create-element Sample sc01 Anim --scan-type colour --vectorize vectorize --field 12 --db "$db"
  $scanctl db expose Sample sc01 Anim "1:12" --db "$db"
fi

# With a display, the station itself opens on the sample production, ready to
# scan: log in, choose Sample -> sc01 -> Anim and the drawings, then F5.
if [ -n "${DISPLAY:-}${WAYLAND_DISPLAY:-}" ]; then
  echo "== Opening the station on $db with the scanners of $etc/Scan.conf =="
  exec env SCAN_DB="$db" build/bin/Scan
fi

# The sample list, fed through the test scanner's feeder: each sheet comes in a
# little crooked and is registered on its peg holes, turned square and cut to
# the field, saved in the element's folder, marked scanned and queued.
echo "== Scanning drawings 1 to 12 of Sample -> sc01 -> Anim with the test scanner of $etc/Scan.conf =="
status=0
$scanctl scan --db "$db" --conf "$etc/Scan.conf" --scanner "Test Scanner" --dpi 300 \
  --feed autofeed --on-register-failure retry --scaninfo-files \
  --job Sample --scene sc01 --element Anim --drawings "1:12" >/dev/null || status=$?
echo "The scan files are in $sample/sc01/Anim; '$scanctl info $sample/sc01/Anim/Anim-1.tif' shows one."

# A vectorize worker takes the queued drawings one at a time and writes each
# drawing's vector drawing beside its scan, as a drawing file and as SVG.
echo "== Vectorizing the queue with a worker =="
worker=0
build/bin/pix2vec --worker run --db "$db" --until-empty --svg || worker=$?
[ $worker -eq 3 ] || [ $worker -eq 0 ] || status=$worker  # 3: nothing was queued
echo "== The vectorize queue =="
$scanctl queue list --db "$db" || status=$?
echo "The vector drawings are beside their scans: $sample/sc01/Anim/Anim-N.kwg," \
  "which 'build/bin/pix2vec --info $sample/sc01/Anim/Anim-1.kwg' shows," \
  "and $sample/sc01/Anim/Anim-N.svg, which any browser shows."
exit $status
