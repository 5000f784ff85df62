#!/bin/sh
# failing_call_test.sh FAULT TOOL: calls of the C library that fail, or do a part of their work, where the tool reads and writes.
# FAULT is the library of fault.c.
set -u
fault=$1 tool=$2
directory=$(mktemp -d)
trap 'rm -rf "$directory"' EXIT
mkdir "$directory/whole" "$directory/sample"
"$tool" sample idle "$directory/whole" || exit 1
names=$(ls "$directory/whole")
record=$directory/whole/buffering.rec
"$tool" print buffering "$record" >"$directory/expected" || exit 1
status=0

# with FUNCTION CALL FAULT ARGUMENT...: runs the tool.
with()
{
    what="$1 $2 $3"
    LD_PRELOAD=$fault FAULT_IN=$1 FAULT_AT=$2 FAULT=$3
    shift 3
    export LD_PRELOAD FAULT_IN FAULT_AT FAULT
    "$tool" "$@" >"$directory/out" 2>"$directory/err"
    result=$?
    unset LD_PRELOAD
}
fail() { echo "$what: $*, status $result, $(cat "$directory/err")" >&2; status=1; }
expect_failure()
{
    [ "$result" -eq 1 ] && [ "$(cat "$directory/err")" = "$1" ] || fail "expected status 1 and '$1'"
}
expect_report() { [ "$result" -eq 0 ] && cmp -s "$directory/out" "$directory/expected" || fail "expected the report"; }
expect_new_set()
{
    [ "$result" -eq 0 ] || fail "expected success"
    diff -r "$directory/whole" "$directory/sample" >&2 || fail "expected the new records"
}
expect_old_set()
{
    [ "$(ls -A "$directory/sample")" = "$names" ] || fail "expected the old records alone: $(ls -A "$directory/sample")"
    for name in $names; do [ "$(cat "$directory/sample/$name")" = old ] || fail "$name is not the old record"; done
}
old_set() { for name in $names; do echo old >"$directory/sample/$name"; done; }

EINTR=4 EIO=5 EXDEV=18 ENOSPC=28

# A stopped and continued process, or a debugger, interrupts calls.
with open 1 error:$EINTR print buffering "$record" && expect_report
with read 1 error:$EINTR print buffering "$record" && expect_report
with read 1 short print buffering "$record" && expect_report
for call in 1 8; do
    old_set && with write $call error:$EINTR sample idle "$directory/sample" && expect_new_set
    old_set && with write $call short sample idle "$directory/sample" && expect_new_set
done
old_set && with flock 1 error:$EINTR sample idle "$directory/sample" && expect_new_set

with read 1 error:$EIO print buffering "$record"
[ "$result" -eq 2 ] && [ "$(cat "$directory/err")" = "decstats: $record: Input/output error" ] || fail "expected a failure to read"

# Whatever fails, the old set stays.
old_set
with mkostemp 8 error:$ENOSPC sample idle "$directory/sample"
expect_failure "decstats: $directory/sample: No space left on device"
expect_old_set
with write 8 error:$EIO sample idle "$directory/sample"
expect_failure "decstats: $directory/sample/usage.rec: Input/output error"
expect_old_set
with fchmod 1 error:$EIO sample idle "$directory/sample"
expect_failure "decstats: $directory/sample/tdemux.rec: Input/output error"
expect_old_set
# A file server may say only at the close that it is full.
with close 1 error:$ENOSPC sample idle "$directory/sample"
expect_failure "decstats: $directory/sample/tdemux.rec: No space left on device"
expect_old_set
call=0
for component in tdemux vframer vdecoder audio metadata buffering clock-recovery usage; do
    for move in away there; do # the old record, then the new one
        call=$((call + 1))
        with rename $call error:$EXDEV sample idle "$directory/sample"
        expect_failure "decstats: $directory/sample/$component.rec: Invalid cross-device link"
        expect_old_set
    done
done

# The records of an empty directory are gone again as well.
rm "$directory/sample"/*
with rename 8 error:$EXDEV sample idle "$directory/sample"
expect_failure "decstats: $directory/sample/usage.rec: Invalid cross-device link"
[ -z "$(ls -A "$directory/sample")" ] || fail "left behind: $(ls -A "$directory/sample")"

with fclose 1 error:$ENOSPC demo --list
expect_failure "decstats: standard output: No space left on device"
# A write failed in the middle of an output, and the end of it does not say so again: 1024 version records without a text, which
# are longer than the buffer.
{ printf 'Q$R$V$B$L$O$B<>.\022\001\000\000\002\021' && head -c 252 /dev/zero; } >"$directory/records"
for _ in 1 2 3 4 5 6 7 8 9 10; do
    cat "$directory/records" "$directory/records" >"$directory/twice"
    mv "$directory/twice" "$directory/records"
done
rm "$directory/out"
ln -s /dev/full "$directory/out"
with fclose 1 none version "$directory/records"
expect_failure "decstats: standard output: Input/output error"
exit $status
