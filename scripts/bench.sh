#!/usr/bin/env bash
# Builds the benchmarks and runs each beside its peer; prints one table and keeps it in
# build/bench/table.tsv. A PostgreSQL server of its own serves those that need one. Without a
# filter it also plays the sample's window and tells for how long at most it did not answer, which
# must stay below 100 ms.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-dependencies.sh
[ -f build/release/build.ninja ] || cmake --preset release
cmake --build --preset release
mkdir -p build/bench
result=0
QT_QPA_PLATFORM=offscreen scripts/test-servers.sh build/release/benchmarks/korvane_bench --work build/bench "$@" ||
  result=$?
[ $# -eq 0 ] || exit "$result"

window=build/bench/window
programs=build/release/examples/orders
rm -rf "$window"
"$programs/orders_creation" examples/orders "$window" >"build/bench/creation.log"
if scripts/with-display.sh "$programs/orders" examples/orders "$window" --script "$window/pictures" \
  >build/bench/window.log 2>&1; then
  tail -n 3 build/bench/window.log
else
  cat build/bench/window.log
  result=1
fi
exit "$result"
