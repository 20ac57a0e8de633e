#!/usr/bin/env bash
# bench.sh [--quick] [BENCHMARK-ARGUMENT...]: installs what is missing, builds in release mode, counts the library's file
# reads, times it beside the least that the same work can cost, and prints both as Markdown tables. Takes some minutes;
# --quick takes fewer and shorter repetitions, for a first look. The clips, some 760 MB, are written to a folder of
# their own in $TMPDIR, or /tmp, which is removed at the end, also after an interruption.
set -euo pipefail
cd "$(dirname "$0")/.."

repetitions=(--benchmark_repetitions=7 --benchmark_min_time=0.2)
command="scripts/bench.sh $*"
if [ "${1:-}" = --quick ]; then
  repetitions=(--benchmark_repetitions=3 --benchmark_min_time=0.02)
  shift
fi

scripts/install.sh build test bench
cmake --preset release -DCLIPPARSER_BUILD_BENCH=ON >/dev/null
cmake --build --preset release --target clip_counts clip_benchmark >&2

clips=$(mktemp -d)
trap 'rm -rf "$clips"' EXIT

echo "$(date +%F), $(sed -n 's/^model name[^:]*: //p' /proc/cpuinfo | head -1), $(nproc) cores, $(uname -sr)," \
  "$(c++ --version | head -1), load $(cut -d' ' -f1 /proc/loadavg), commit $(git rev-parse --short HEAD): \`${command% }\`"
echo
build/release/bench/clip_counts "$clips"
echo
build/release/bench/clip_benchmark "${repetitions[@]}" "$@" "$clips"
