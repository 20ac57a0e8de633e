#!/usr/bin/env bash
# Installs what is missing of the Debian packages named by the kinds given as arguments, which stand below.
set -euo pipefail

packages() {
  case $1 in
    build) echo g++ cmake ninja-build pkg-config libcli11-dev nlohmann-json3-dev libsndfile1-dev libssl-dev libxxhash-dev ;;
    test) echo libgtest-dev pkg-config binutils python3 python3-jsonschema ;;
    bench) echo libbenchmark-dev ;;
    clang) echo clang libclang-rt-14-dev ;;
    fuzz) echo clang libclang-rt-14-dev llvm-14 ;;
    package) echo dpkg-dev file ;;
    docs) echo doxygen ;;
    check) echo clang clang-tidy clang-format git ;;
    *) echo "install.sh: unknown kind '$1'" >&2 && return 2 ;;
  esac
}

missing=()
for kind in "$@"; do
  names=$(packages "$kind")
  for package in $names; do
    dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'ok installed' || missing+=("$package")
  done
done
[ ${#missing[@]} -eq 0 ] && exit 0

echo "installing: ${missing[*]}" >&2
sudo=
[ "$(id -u)" -eq 0 ] || sudo=sudo
export DEBIAN_FRONTEND=noninteractive
$sudo apt-get update -qq >&2
$sudo apt-get install -y -qq "${missing[@]}" >/dev/null
