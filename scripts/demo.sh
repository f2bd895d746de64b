#!/usr/bin/env bash
# Builds the sample application, lets it create its databases anew in build/demo, and then
# take an order through all that can happen to it.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-dependencies.sh
[ -f build/dev/build.ninja ] || cmake --preset dev
cmake --build --preset dev --target orders_creation orders_road korvane_tool
rm -rf build/demo
build/dev/examples/orders/orders_creation examples/orders build/demo
build/dev/examples/orders/orders_road examples/orders build/demo
