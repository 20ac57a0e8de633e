#!/usr/bin/env bash
# fuzz.sh [SECONDS [TARGET...]]: fuzzes every target, or those named, for so many seconds each (20 by default), two at a
# time, under ASan and UBSan. Prints a line for each; fails when one found something, and says where that is.
# fuzz.sh --coverage [TARGET...]: how much of the library the collected inputs reach.
# What is worth keeping is collected in $FUZZ_CORPUS, build/fuzz/corpus by default, and the next run goes on from there.
set -euo pipefail
cd "$(dirname "$0")/.."
export FUZZ_CORPUS=${FUZZ_CORPUS:-build/fuzz/corpus}
limits=(-timeout=5 -rss_limit_mb=512 -malloc_limit_mb=256)

# The directories of inputs of a target as its test takes them: the seeds, and what once failed.
inputs() { # PRESET TARGET
  echo "build/$1/fuzz/seeds/$2"
  [ ! -d "fuzz/regressions/$2" ] || echo "fuzz/regressions/$2"
}

build() { # PRESET
  scripts/install.sh build test fuzz
  cmake --preset "$1" >/dev/null
  cmake --build --preset "$1" | tail -n 1 >&2
}

fuzz_one() { # SECONDS TARGET
  local target=$2 log=build/fuzz/logs/$2.log found=build/fuzz/findings/$2 status=nothing directories
  mkdir -p "$FUZZ_CORPUS/$target" "$found" build/fuzz/logs
  mapfile -t directories < <(inputs fuzz "$target")
  "build/fuzz/fuzz/fuzz-$target" -max_total_time="$1" "${limits[@]}" -dict=fuzz/dictionary -print_final_stats=1 \
    -artifact_prefix="$found/" "$FUZZ_CORPUS/$target" "${directories[@]}" >"$log" 2>&1 || status=
  awk -v target="$target" -v status="${status:-A FINDING}" '
    /stat::number_of_executed_units/ { executions = $2 }
    match($0, /cov: [0-9]+/) { edges = substr($0, RSTART + 5, RLENGTH - 5) }
    match($0, /corp: [0-9]+/) { corpus = substr($0, RSTART + 6, RLENGTH - 6) }
    END { printf "%-24s%10d executions%7d edges%6d inputs   %s\n", target, executions, edges, corpus, status }' "$log"
  [ -z "$status" ] || return 0
  grep -hE '^SUMMARY|not so|runtime error|ERROR: libFuzzer' "$log" | sed 's/^/    /' || true
  local input
  input=$(sed -n 's/.*Test unit written to //p' "$log" | tail -1)
  echo "    log $log; replay it with:"
  echo "    build/fuzz/fuzz/fuzz-$target ${limits[*]} ${input:-(no input kept)}"
  case $input in */timeout-* | */slow-unit-*) echo "    If that ends in time, the machine was busy." ;; esac
  return 1
}

regions() { # NAME PROFILE PROGRAM [-object PROGRAM]...
  llvm-cov-14 report "${@:3}" -instr-profile="$2" foundation klv metadata stream cache \
    2> >(grep -v 'mismatched data' >&2) | # of inline functions that one program uses and another does not
    awk -v name="$1" '$1 == "TOTAL" { printf "%-24s%7d of %d regions of the library  %s\n", name, $2 - $3, $2, $4 }'
}

# By clang's source-based coverage, with the programs that only replay.
coverage() { # TARGET...
  local target directories programs=() at=build/fuzz-coverage/fuzz
  rm -f "$at"/*.profraw
  for target in "$@"; do
    mapfile -t directories < <(inputs fuzz-coverage "$target")
    [ ! -d "$FUZZ_CORPUS/$target" ] || directories+=("$FUZZ_CORPUS/$target")
    LLVM_PROFILE_FILE="$at/$target.profraw" "$at/fuzz-$target" "${directories[@]}" >/dev/null
    llvm-profdata-14 merge -o "$at/$target.profdata" "$at/$target.profraw"
    regions "$target" "$at/$target.profdata" "$at/fuzz-$target"
    programs+=(-object "$at/fuzz-$target")
  done
  llvm-profdata-14 merge -o "$at/all.profdata" "$at"/*.profraw
  regions all "$at/all.profdata" "${programs[@]:1}"
}

case ${1:-} in
  --one) fuzz_one "$2" "$3" && exit || exit 1 ;;
  --coverage) preset=fuzz-coverage ;;
  *) preset=fuzz seconds=${1:-20} ;;
esac
shift || true
build "$preset"
targets=("$@")
[ $# -gt 0 ] || for seeds in "build/$preset/fuzz/seeds"/*/; do targets+=("$(basename "$seeds")"); done
if [ "$preset" = fuzz ]; then
  printf '%s\n' "${targets[@]}" | xargs -P 2 -n 1 scripts/fuzz.sh --one "$seconds"
else
  coverage "${targets[@]}"
fi
