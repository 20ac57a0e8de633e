#!/usr/bin/env bash
# test.sh [PRESET [CTEST-ARGUMENT...]]: installs what is missing, builds and runs every test. Presets: dev (the
# default), release, clang, asan-ubsan, tsan.
set -euo pipefail
cd "$(dirname "$0")/.."
preset=${1:-dev}
shift || true
scripts/install.sh build test
case $preset in clang | asan-ubsan) scripts/install.sh clang ;; esac

cmake --preset "$preset" >/dev/null
cmake --build --preset "$preset"
ctest --test-dir "build/$preset" --output-on-failure -j 2 "$@"
