#!/usr/bin/env bash
# check_descriptions.sh CLIPINFO MAKE-CLIP: help, man page and completion, which are made from the same definitions.
set -uo pipefail
clipinfo=$1
make_clip=$2
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cd "$scratch" || exit 1
failed=0
fail() { echo "failed: $*" && failed=1; }

"$clipinfo" --man-page >page.1 || fail "--man-page gave $?"
"$clipinfo" --bash-completion >completion || fail "--bash-completion gave $?"
commands=$("$clipinfo" --help | sed -n '/^Subcommands:/,/^$/s/^  \([a-z]\{1,\}\) .*/\1/p')
[ "$(wc -w <<<"$commands")" -ge 3 ] || fail "the help tells of no commands"

# Each option of each command's help stands in both.
for command in $commands; do
  "$clipinfo" "$command" --help >help || fail "$command --help gave $?"
  grep -q '^Examples:' help || fail "$command --help has no examples"
  for option in $(grep -o '^  \(-.,\)\?--[a-z0-9-]*' help | sed 's/.*--/--/'); do
    grep -qF -- "${option//-/\\-}" page.1 || fail "the man page does not tell of $command $option"
    grep -q "^    $command) options='.*$option[' ]" completion || fail "the completion does not know $command $option"
  done
done

if command -v groff >/dev/null; then
  groff -man -ww -z page.1 2>warnings || fail "groff gave $?"
  [ ! -s warnings ] || { fail "groff warns" && cat warnings; }
  grep -q '^.SH EXIT STATUS' page.1 || fail "the man page has no exit status"
fi

# complete WORD...: what bash offers for the last word.
"$make_clip" clip.mxf
: >other.txt
bash -n completion || fail "bash does not take the completion"
. ./completion
complete_words() { COMP_WORDS=(clipinfo "$@") COMP_CWORD=$#; _clipinfo; }
offers() {
  local wanted=$1
  shift
  complete_words "$@"
  [ "${COMPREPLY[*]}" = "$wanted" ] || fail "'$*' is completed to '${COMPREPLY[*]}' instead of '$wanted'"
}
offers "frames" fr
offers "--range" frames clip.mxf --ra
offers "clip.mxf" frames ""
offers "clip.mxf" cl
offers "" frames clip.mxf --range ""
offers "other.txt" extract clip.mxf -o o
offers "--version" --ver

exit $failed
