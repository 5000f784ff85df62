#!/bin/sh
# interrupted_sample_test.sh FAULT TOOL: a signal at any moment of "decstats sample" leaves all the old records or all the new
# ones, and no temporary file. A signal that is ignored changes nothing. FAULT is the library of fault.c.
set -u
fault=$1 tool=$2
directory=$(mktemp -d)
trap 'rm -rf "$directory"' EXIT
mkdir "$directory/old" "$directory/whole"
"$tool" sample idle "$directory/whole" || exit 1
for file in "$directory/whole"/*; do echo old >"$directory/old/${file##*/}"; done
status=0
fail() { echo "signal $signal at call $call: $*" >&2; status=1; }

# sample_with DISPOSITION: the set in the directory is old; a new one is written, with the signal arriving at the call.
sample_with()
{
    rm -rf "$directory/sample"
    cp -r "$directory/old" "$directory/sample"
    # A process in the background, or under nohup, has signals ignored from the start.
    env "--$1-signal=$signal" sh -c 'LD_PRELOAD=$1 FAULT_IN=files FAULT_AT=$2 FAULT=signal:$3 "$4" sample idle "$5"; exit $?' sh \
        "$fault" "$call" "$signal" "$tool" "$directory/sample" 2>/dev/null
    result=$?
    if diff -qr "$directory/sample" "$directory/whole" >"$directory/differences"; then found=new
    elif diff -qr "$directory/sample" "$directory/old" >>"$directory/differences"; then found=old
    else
        found=mixed
        fail "neither the old records alone nor the new ones: $(cat "$directory/differences")"
    fi
}

for signal in 1 2 3 15; do # SIGHUP, SIGINT, SIGQUIT, SIGTERM
    call=0
    while call=$((call + 1)); do
        sample_with default
        [ "$result" -ne 0 ] || break
        [ "$result" -eq $((128 + signal)) ] || fail "status $result"
    done
    # Five calls for each of eight records: it is made, written, gets its mode, moves the old one away and takes its name.
    [ "$call" -eq 41 ] || fail "expected signals at 40 calls"
    [ "$found" = new ] || fail "expected the new records"

    for call in 1 2 24 25 40; do
        sample_with ignore
        [ "$result" -eq 0 ] || fail "ignored, but the status is $result"
        [ "$found" = new ] || fail "ignored, but the old records are there"
    done
done
exit $status
