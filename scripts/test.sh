#!/usr/bin/env bash
# Builds a preset (dev or asan) and runs its tests, with a PostgreSQL server of their own.
set -euo pipefail
cd "$(dirname "$0")/.."
preset=${1:-dev}
scripts/install-dependencies.sh
[ -f "build/$preset/build.ninja" ] || cmake --preset "$preset"
cmake --build --preset "$preset"
QT_QPA_PLATFORM=offscreen scripts/test-servers.sh ctest --preset "$preset"
