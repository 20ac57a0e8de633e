#!/usr/bin/env bash
# check_clipinfo.sh CLIPINFO MAKE-CLIP: the host program from outside, on clips that make-clip writes.
set -uo pipefail
clipinfo=$1
make_clip=$2
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cd "$scratch" || exit 1
failed=0
fail() { echo "failed: $*" && failed=1; }

# expect STATUS TEXT COMMAND...: the exit status, and a text in what is printed.
expect() {
  local status=$1 text=$2
  shift 2
  "$@" >out 2>&1
  local was=$?
  [ $was -eq "$status" ] || fail "$* gave $was instead of $status"
  grep -qF -- "$text" out || { fail "$* did not print '$text' but:" && cat out; }
}

"$make_clip" clip.mxf
"$make_clip" --header-index --units 60 --data-bytes 100 header-index.mxf
"$make_clip" --no-rip no-random-index.mxf

# The summary.
for text in "25 edit units at 25 per second, 00:00:01:00" "1920x1080" "OperationalPattern_1a" "CA.FE.20.26" \
  "50000000 bits per second" "from the random index pack" "01:00:00:00"; do
  expect 0 "$text" "$clipinfo" clip.mxf
done
expect 0 "from the partition links" "$clipinfo" no-random-index.mxf
expect 0 "CompanyName             Example Company" "$clipinfo" tree clip.mxf
expect 0 "clipinfo 1." "$clipinfo" --version
expect 0 "Exit status" "$clipinfo" --help
expect 2 "" "$clipinfo"

# Clips that cannot be opened: one line each, and the others are still printed.
: >empty.mxf
head -c 4096 /dev/zero >zeros.mxf
head -c 3000 clip.mxf >cut.mxf
mkfifo pipe.mxf
expect 1 "25 edit units" "$clipinfo" nowhere.mxf clip.mxf .
for fault in "nowhere.mxf: not found" "empty.mxf: empty file" "zeros.mxf: not an MXF file" "cut.mxf: header metadata damaged, or not one KAG behind its partition, at offset 0x200 (512); " \
  "pipe.mxf: not a regular file"; do
  expect 1 "$fault" "$clipinfo" "${fault%%:*}"
  [ "$(wc -l <out)" -eq 1 ] || fail "more than one line for ${fault%%:*}"
done

# Rows, in each format and range.
for clip in clip.mxf header-index.mxf no-random-index.mxf; do
  units=$("$clipinfo" "$clip" | sed -n 's/^ *Duration *\([0-9]*\) .*/\1/p')
  [ "$("$clipinfo" frames --csv "$clip" | wc -l)" -eq $((units + 1)) ] || fail "rows of $clip"
done
expect 0 "11,0x" "$clipinfo" frames clip.mxf --csv --range 10:12
[ "$(wc -l <out)" -eq 3 ] || fail "a range of two rows"
expect 0 '"edit_unit":24' "$clipinfo" frames clip.mxf --json
for range in 20:26 5:5 x 9:3; do expect 1 "range" "$clipinfo" frames clip.mxf --range $range; done
expect 2 "" "$clipinfo" frames clip.mxf --csv --json

# Essence: the bytes of each element are those of the file behind its key and four-byte length.
for clip in clip.mxf header-index.mxf; do
  "$clipinfo" frames --csv $clip | tail -n +2 | while IFS=, read -r _ _ _ _ _ _ _ _ _ _ _ _ offset size _; do
    tail -c +$((offset + 16 + 4 + 1)) $clip | head -c "$size"
  done >wanted
  "$clipinfo" extract $clip --element 1 -o got 2>out || fail "extract from $clip"
  cmp wanted got || fail "the picture of $clip"
done
expect 1 "edit unit 0: no element 9" "$clipinfo" extract clip.mxf --element 9 -o none
expect 1 "is the clip itself" "$clipinfo" extract clip.mxf --element 1 -o clip.mxf
expect 1 "/dev/full" "$clipinfo" extract clip.mxf --element 1 -o /dev/full
cp clip.mxf damaged.mxf
key=$("$clipinfo" frames --csv --range 12:13 clip.mxf | tail -1 | cut -d, -f13)
printf x | dd of=damaged.mxf bs=1 seek="$key" conv=notrunc status=none
expect 1 "edit unit 12" "$clipinfo" extract damaged.mxf --element 1 -o damaged.bin
for left in none none.part damaged.bin damaged.bin.part got.part; do [ ! -e $left ] || fail "$left was left behind"; done

exit $failed
