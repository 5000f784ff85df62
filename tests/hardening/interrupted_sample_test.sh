#!/bin/sh
# interrupted_sample_test.sh INTERRUPT TOOL: a signal at any moment of "decstats sample" leaves no part of a record and no
# temporary file. INTERRUPT is the library of interrupt.c.
set -u
interrupt=$1 tool=$2
directory=$(mktemp -d)
trap 'rm -rf "$directory"' EXIT
mkdir "$directory/whole"
"$tool" sample idle "$directory/whole" || exit 1
names=$(ls "$directory/whole")
status=0
fail() { echo "signal $signal at call $call: $*" >&2; status=1; }

for signal in 1 2 15; do # SIGHUP, SIGINT, SIGTERM
    call=0
    while call=$((call + 1)); do
        rm -rf "$directory/sample"
        mkdir "$directory/sample"
        for name in $names; do echo old >"$directory/sample/$name"; done
        # A shell of its own says that a signal ended its command, which is of no interest here.
        sh -c 'LD_PRELOAD=$1 INTERRUPT_AT=$2 INTERRUPT_WITH=$3 "$4" sample idle "$5"; exit $?' sh \
            "$interrupt" "$call" "$signal" "$tool" "$directory/sample" 2>/dev/null
        result=$?
        [ "$result" -eq 0 ] || [ "$result" -eq $((128 + signal)) ] || fail "status $result"
        left=$(cd "$directory/sample" && echo .*.rec.*)
        [ "$left" = '.*.rec.*' ] || fail "left behind: $left"
        for name in $names; do
            [ "$(head -c 3 "$directory/sample/$name")" = old ] || cmp -s "$directory/sample/$name" "$directory/whole/$name" ||
                fail "$name is neither the old record nor the new one"
        done
        [ "$result" -ne 0 ] || break
    done
    # Four calls for each of eight records.
    [ "$call" -eq 33 ] || fail "expected signals at 32 calls"
done
exit $status
