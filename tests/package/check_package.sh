#!/usr/bin/env bash
# check_package.sh BUILD: installs the build into an empty folder and builds a foreign project against it, once through
# find_package and once through pkg-config.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

DESTDIR= cmake --install "$1" --prefix "$scratch/usr" >/dev/null

cmake -G Ninja -S "$here/foreign" -B "$scratch/foreign" -DCMAKE_PREFIX_PATH="$scratch/usr" >/dev/null
cmake --build "$scratch/foreign" >/dev/null
"$scratch/foreign/foreign"

PKG_CONFIG_PATH=$(dirname "$(find "$scratch/usr" -name clipparser.pc)")
export PKG_CONFIG_PATH
# shellcheck disable=SC2046  # the flags are words
c++ -std=c++17 "$here/foreign/main.cpp" -o "$scratch/by-pkg-config" \
  $(pkg-config --define-variable=prefix="$scratch/usr" --cflags --libs clipparser)
LD_LIBRARY_PATH=$(pkg-config --define-variable=prefix="$scratch/usr" --variable=libdir clipparser) "$scratch/by-pkg-config"
