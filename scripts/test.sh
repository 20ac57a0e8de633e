#!/usr/bin/env bash
# test.sh [PRESET [CTEST-ARGUMENT...]]: installs what is missing, builds and runs every test. Presets: dev (the
# default), release, clang, asan-ubsan, tsan.
set -euo pipefail
cd "$(dirname "$0")/.."
preset=${1:-dev}
shift || true
scripts/install.sh build test
[ "$preset" = clang ] && scripts/install.sh check

cmake --preset "$preset" >/dev/null
cmake --build --preset "$preset"
ctest --test-dir "build/$preset" --output-on-failure -j 2 "$@"
