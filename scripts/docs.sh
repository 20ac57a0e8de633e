#!/usr/bin/env bash
# docs.sh: installs what is missing and makes the API reference from the public headers, as pages for a browser. A
# public class or function that is not described fails it, and so does any other warning of Doxygen.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install.sh build test docs

cmake --preset dev >/dev/null
doxygen build/dev/cmake/Doxyfile
echo "$PWD/build/dev/reference/html/index.html"
