#!/usr/bin/env bash
# lint.sh: the format of every source file, then clang-tidy over the library and the tool; with the tools of Debian 12,
# for other versions format and warn differently.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install.sh build test check

git ls-files '*.cpp' '*.h' | xargs clang-format --dry-run --Werror
cmake --preset clang >/dev/null
git ls-files '*.cpp' | grep -vE '^(tests|fuzz|bench)/' | xargs -P 2 -n 4 clang-tidy -p build/clang --quiet
