#!/bin/sh
# cut_output_test.sh LIBRARY TOOL...: the tool when a reader has seen enough, and when a file reaches the size limit of the
# process in the middle of an output. TOOL may start with an emulator.
set -u
library=$1
shift
directory=$(mktemp -d)
trap 'rm -rf "$directory"' EXIT
status=0
fail() { echo "$*" >&2; status=1; }

# expect_failure TEXT: the run ended with status 1 and TEXT as its one line on standard error.
expect_failure()
{
    [ "$(cat "$directory/status")" = 1 ] || fail "expected status 1 with '$1', got $(cat "$directory/status")"
    [ "$(cat "$directory/err")" = "$1" ] || fail "expected '$1', got '$(cat "$directory/err")'"
}

# A dump much longer than the buffers of a pipe and of standard output together: 16384 copies of the library's version record.
offset=$("$@" version "$library" | sed -n 's/^Offset *: //p')
tail -c +$((offset + 1)) "$library" | head -c 274 >"$directory/records"
for _ in 1 2 3 4 5 6 7 8 9 10 11 12 13 14; do
    cat "$directory/records" "$directory/records" >"$directory/twice"
    mv "$directory/twice" "$directory/records"
done
[ "$("$@" version "$directory/records" | grep -c '^Offset ')" -eq 16384 ] || fail "expected 16384 records"

first=$({ "$@" version "$directory/records" 2>"$directory/err"; echo $? >"$directory/status"; } | head -n 1)
[ "$first" = "Description: Statistics Printing Library" ] || fail "the first line is '$first'"
expect_failure "decstats: standard output: Broken pipe"

# Four blocks of 512 bytes. A sanitizer's runtime would fail first, on a temporary file of its own; without a folder for it,
# it does without.
(ulimit -f 4; exec env TMPDIR=/dev/null "$@" version "$directory/records") >"$directory/out" 2>"$directory/err"
echo $? >"$directory/status"
expect_failure "decstats: standard output: File too large"
[ "$(wc -c <"$directory/out")" -eq 2048 ] || fail "expected 2048 bytes before the limit, got $(wc -c <"$directory/out")"

mkdir "$directory/sample"
echo old >"$directory/sample/tdemux.rec"
(ulimit -f 4; exec env TMPDIR=/dev/null "$@" sample idle "$directory/sample") 2>"$directory/err"
echo $? >"$directory/status"
expect_failure "decstats: $directory/sample/tdemux.rec: File too large"
[ "$(ls -A "$directory/sample")" = tdemux.rec ] || fail "left behind: $(ls -A "$directory/sample")"
[ "$(cat "$directory/sample/tdemux.rec")" = old ] || fail "the old file has changed"
exit $status
