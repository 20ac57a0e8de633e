#!/usr/bin/env bash
# run.sh [CLIP...]: installs what is missing, builds, opens the clips and prints what they hold. Without a clip it makes
# a sample clip and opens that.
set -euo pipefail
called_from=$PWD
cd "$(dirname "$0")/.."
build=build/release
scripts/install.sh build test

cmake --preset release >/dev/null
cmake --build --preset release --target clipinfo make-clip >&2

if [ $# -eq 0 ]; then
  "$build/tests/make-clip" "$build/sample.mxf"
  exec "$build/clipinfo/clipinfo" "$build/sample.mxf"
fi
clipinfo=$PWD/$build/clipinfo/clipinfo
cd "$called_from"
exec "$clipinfo" "$@"
