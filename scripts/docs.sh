#!/usr/bin/env bash
# docs.sh: installs what is missing and makes the API reference from the public headers, as pages for a browser. A
# public class or function that is not described fails it, and so does any other warning of Doxygen, and a link from one
# document to a file that is not there.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install.sh build test docs

git ls-files '*.md' | while read -r document; do
  { grep -oE '\]\([^)#:]+\)' "$document" || true; } | tr -d '])(' | while read -r target; do
    [ -e "$(dirname "$document")/$target" ] || { echo "$document: $target is not there" >&2 && exit 1; }
  done
done

cmake --preset dev >/dev/null
doxygen build/dev/cmake/Doxyfile
echo "$PWD/build/dev/reference/html/index.html"
