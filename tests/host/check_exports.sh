#!/usr/bin/env bash
# check_exports.sh LIBRARY: compares the classes and data that the shared library shows with exports.txt beside this
# script. A class counts by its members, its type_info and its vtables.
set -euo pipefail
expected=$(dirname "$0")/exports.txt
symbols=$(nm -D --defined-only "$1" | awk '{print $NF}')

labels=$(grep -c '^FBC_UL_' <<<"$symbols" || true)
# A class's name stands after its length, behind the markers of members, run-time types and thunks.
classes=$(grep -v '^FBC_UL_' <<<"$symbols" |
  sed -E 's/^_ZTC[0-9].*_//; s/^_Z(T[hv]n?[0-9n]*_(n?[0-9]+_)?)?(T[ISTV])?N?K?//' |
  sed -E 's/^([0-9]+)(.*)$/\1 \2/' | awk '{ print ($1 ~ /^[0-9]+$/) ? substr($2, 1, $1) : $0 }')
diff -u "$expected" <({ echo "FBC_UL_ x $labels"; echo "$classes"; } | LC_ALL=C sort -u)

# It prints nothing, writes no file, starts no thread or process: it does not even import what would.
loud='^(v?d?printf|__v?f?printf_chk|v?fprintf|puts|fputs|putchar|fwrite|write|pwrite|writev|fopen|fopen64|creat|syslog|perror|pthread_create|fork|vfork|system|exit|_exit|_ZSt4cout|_ZSt4cerr|_ZNSt6thread.*)(@.*)?$'
if nm -D --undefined-only "$1" | awk '{print $NF}' | grep -E "$loud"; then
  echo "imports what a library that only reads has no use for" >&2
  exit 1
fi
