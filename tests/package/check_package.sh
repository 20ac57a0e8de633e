#!/usr/bin/env bash
# check_package.sh MAKE-CLIP BUILD: installs the build into an empty folder and tries it as a foreign project would.
# check_package.sh MAKE-CLIP: makes the Debian packages, unpacks them and tries those.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
"$1" "$scratch/clip.mxf"
fail() { echo "failed: $*" >&2 && exit 1; }

unpack_packages() {
  local package packages
  packages=$("$here/../../scripts/package.sh")
  for package in $packages; do
    dpkg -x "$package" "$scratch"
    dpkg -f "$package" Package Depends >>"$scratch/control"
  done
  for line in 'Package: libclipparser1' 'Package: libclipparser-dev' 'Package: clipinfo' \
    'Depends: libclipparser1 (= [0-9.-]*), libc6' 'Depends: libclipparser1 (= [0-9.-]*)$' 'Depends: libc6'; do
    grep -q "^$line" "$scratch/control" || fail "no line '$line' in the packages' control files"
  done
  for package in libclipparser1 libclipparser-dev clipinfo; do
    [ -s "$scratch/usr/share/doc/$package/copyright" ] || fail "no copyright file in $package"
    zcat "$scratch/usr/share/doc/$package/changelog.Debian.gz" >/dev/null
  done
}

if [ $# -eq 2 ]; then
  DESTDIR='' cmake --install "$2" --prefix "$scratch/usr" >/dev/null
else
  unpack_packages
fi
library=$(find "$scratch/usr" -name 'libclipparser.so.1')
export LD_LIBRARY_PATH=${library%/*}

# try COMMAND...: what a program prints about the sample clip.
try() { "$@" "$scratch/clip.mxf" | grep '^25 edit units, 1920 wide$' >/dev/null || fail "$*"; }

# Through find_package. A host must not need a newer library than there is.
cmake -G Ninja -S "$here/foreign" -B "$scratch/foreign" -DCMAKE_PREFIX_PATH="$scratch/usr" >/dev/null
cmake --build "$scratch/foreign" >/dev/null
try "$scratch/foreign/foreign"
! cmake -S "$here/foreign" -B "$scratch/newer" -DCMAKE_PREFIX_PATH="$scratch/usr" -DWANTED=99 >/dev/null 2>&1 ||
  fail "version 99 was found"

# Through pkg-config.
PKG_CONFIG_PATH=$(dirname "$(find "$scratch/usr" -name clipparser.pc)")
export PKG_CONFIG_PATH
# shellcheck disable=SC2046  # the flags are words
c++ -std=c++17 "$here/foreign/main.cpp" -o "$scratch/by-pkg-config" $(pkg-config --cflags --libs clipparser)
try "$scratch/by-pkg-config"

# The program, as installed.
clipinfo=$scratch/usr/bin/clipinfo
if [ -e "$clipinfo" ]; then
  "$clipinfo" "$scratch/clip.mxf" | grep 1920x1080 >/dev/null || fail "$clipinfo"
  zcat "$scratch/usr/share/man/man1/clipinfo.1.gz" | grep '^\.TH' >/dev/null || fail "no man page"
  bash -n "$scratch/usr/share/bash-completion/completions/clipinfo" || fail "the completion is no bash script"
fi
