#!/usr/bin/env bash
# Builds the sample application and lets it create its databases anew in build/demo.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-dependencies.sh
[ -f build/dev/build.ninja ] || cmake --preset dev
cmake --build --preset dev --target orders_creation korvane_tool
rm -rf build/demo
build/dev/examples/orders/orders_creation examples/orders build/demo
