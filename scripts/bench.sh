#!/usr/bin/env bash
# bench.sh [BENCHMARK-ARGUMENT...]: installs what is missing, builds in release mode, and times the library beside plain
# pread calls for the same bytes. Writes a clip of about 100 MB to the temporary folder and removes it.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install.sh build test bench

cmake --preset release -DCLIPPARSER_BUILD_BENCH=ON >/dev/null
cmake --build --preset release --target clip_benchmark >&2
exec build/release/bench/clip_benchmark --benchmark_repetitions=7 --benchmark_report_aggregates_only=true "$@"
