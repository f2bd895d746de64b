#!/usr/bin/env bash
# Builds the benchmarks and runs each beside its peer; prints one table and keeps it in
# build/bench/table.tsv. A PostgreSQL server of its own serves those that need one.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-dependencies.sh
[ -f build/release/build.ninja ] || cmake --preset release
cmake --build --preset release
mkdir -p build/bench
QT_QPA_PLATFORM=offscreen scripts/test-servers.sh build/release/benchmarks/korvane_bench --work build/bench "$@"
