#!/usr/bin/env bash
# fuzz.sh [SECONDS [TARGET...]]: builds the fuzz targets with clang under ASan and UBSan and runs each for SECONDS
# (20 by default). Inputs that fail are left in build/fuzz/findings; copy them to fuzz/regressions/TARGET under a name
# that tells what they are.
set -euo pipefail
cd "$(dirname "$0")/.."
seconds=${1:-20}
shift || true
scripts/install.sh build test check

cmake --preset fuzz >/dev/null
cmake --build --preset fuzz
cd build/fuzz
targets=("$@")
if [ ${#targets[@]} -eq 0 ]; then
  for source in ../../fuzz/*Fuzzer.cpp; do targets+=("$(basename "$source" .cpp)"); done
fi
mkdir -p findings

seeds_of() {
  case $1 in
    ClipFuzzer) echo clips ;;
    HeaderMetadataFuzzer) echo headers ;;
    *) echo packets ;;
  esac
}

fuzz_one() {
  mkdir -p "corpus/$1"
  if "fuzz/$1" "corpus/$1" "fuzz/seeds/$(seeds_of "$1")" -dict=../../fuzz/clip.dict -max_total_time="$seconds" -timeout=5 \
    -rss_limit_mb=512 -malloc_limit_mb=256 -max_len=65536 -artifact_prefix="findings/$1-" -print_final_stats=1 \
    >"findings/$1.log" 2>&1; then
    echo "$1: $(grep -o 'cov: [0-9]*' "findings/$1.log" | tail -1)," \
      "$(grep number_of_executed_units "findings/$1.log" | grep -o '[0-9]*') executions"
  else
    echo "$1 failed:"
    tail -40 "findings/$1.log"
    return 1
  fi
}
export -f fuzz_one seeds_of
export seconds
printf '%s\n' "${targets[@]}" | xargs -P 2 -I{} bash -c 'fuzz_one {}'
