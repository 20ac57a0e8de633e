#!/usr/bin/env bash
# package.sh: installs what is missing, builds the Debian packages and prints their files. They are made for the system
# that this runs on.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install.sh build package >&2

command -v ccache >/dev/null && export CMAKE_CXX_COMPILER_LAUNCHER=ccache
cmake --preset package >/dev/null
cmake --build --preset package >&2
rm -f build/package/*.deb
(cd build/package && cpack >cpack.log) || { cat build/package/cpack.log >&2 && exit 1; }
ls "$PWD"/build/package/*.deb
