#!/bin/sh
# interrupted_sample_test.sh FAULT TOOL: a signal at any moment of "decstats sample" leaves all the old records or all the new
# ones, and no temporary file. A signal that is ignored changes nothing. FAULT is the library of fault.c.
set -u
fault=$1 tool=$2
directory=$(mktemp -d)
trap 'rm -rf "$directory"' EXIT
mkdir "$directory/whole"
"$tool" sample idle "$directory/whole" || exit 1
names=$(ls "$directory/whole")
status=0
fail() { echo "signal $signal at call $call: $*" >&2; status=1; }

# sample_with DISPOSITION: the set in the directory is old; a new one is written, with the signal arriving at the call.
sample_with()
{
    rm -rf "$directory/sample"
    mkdir "$directory/sample"
    for name in $names; do echo old >"$directory/sample/$name"; done
    # A process in the background, or under nohup, has signals ignored from the start.
    env "--$1-signal=$signal" sh -c 'LD_PRELOAD=$1 FAULT_IN=files FAULT_AT=$2 FAULT=signal:$3 "$4" sample idle "$5"; exit $?' sh \
        "$fault" "$call" "$signal" "$tool" "$directory/sample" 2>/dev/null
    result=$?
    [ "$(ls -A "$directory/sample")" = "$names" ] || fail "expected the eight records alone: $(ls -A "$directory/sample")"
    new=0
    for name in $names; do
        if cmp -s "$directory/sample/$name" "$directory/whole/$name"; then new=$((new + 1))
        elif [ "$(cat "$directory/sample/$name")" != old ]; then fail "$name is neither the old record nor the new one"
        fi
    done
    [ "$new" -eq 0 ] || [ "$new" -eq 8 ] || fail "$new records are new, the others old"
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
    [ "$new" -eq 8 ] || fail "expected the new records"

    for call in 1 2 24 25 40; do
        sample_with ignore
        [ "$result" -eq 0 ] || fail "ignored, but the status is $result"
        [ "$new" -eq 8 ] || fail "ignored, but the old records are there"
    done
done
exit $status
