#!/bin/sh
# quota_test.sh FAULT TOOL: a quota is used up, or a file server says late that it is. FAULT is the library of fault.c: a quota of
# the system's own takes a file system and rights that a test does not have.
set -u
fault=$1 tool=$2
directory=$(mktemp -d)
trap 'rm -rf "$directory"' EXIT
file=$directory/a.dcap
status=0
EDQUOT=122
said="Disk quota exceeded"

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
fail() { echo "$what: $*, status $result, $(cat "$directory/out" "$directory/err")" >&2; status=1; }
lost() { printf 'decstats: %s: %s; snapshots are lost until there is space\ndecstats: %s: 1 snapshot could not be written\n' "$file" "$said" "$file"; }
is_sound() { "$tool" check "$1" >"$directory/check" 2>&1 || fail "$1 is damaged: $(cat "$directory/check")"; }

# One snapshot is lost, the file is whole, and the gap is told. So it is when some of the snapshot was written already.
for how in error:$EDQUOT cut:$EDQUOT; do
    rm -f "$file"
    with pwrite 2 "$how" capture sample:trouble "$file" --every 20ms --for 90ms
    [ $result = 1 ] && [ "$(cat "$directory/err")" = "$(lost)" ] || fail "expected to lose a snapshot"
    is_sound "$file"
    "$tool" history "$file" | grep -q ": no space\$" || fail "expected a gap: $("$tool" history "$file")"
    "$tool" history "$file" | grep -q "end of the capture" || fail "expected an end"
done

# The first snapshot: nothing is left of a capture that got no further.
rm -f "$file"
with pwrite 1 error:$EDQUOT capture sample:trouble "$file" --for 0s
[ $result = 1 ] && [ "$(cat "$directory/err")" = "$(lost)" ] || fail "expected to lose a snapshot"
[ ! -e "$file" ] || fail "left behind"

# A file server may say only in the end that nothing of it was kept.
with fsync 1 error:$EDQUOT capture sample:trouble "$file" --for 0s
[ $result = 1 ] && [ "$(cat "$directory/err")" = "decstats: $file: $said" ] || fail "expected a failure"

# Whatever call fails while one file follows upon another, each of them is whole, and the capture goes on where it may.
for function in open pwrite ftruncate fsync; do
    for call in 1 2 3 4 5 6 7 8 9 10 11 12; do
        rm -f "$directory"/*.dcap
        with $function $call error:$EDQUOT capture sample:trouble "$file" --every 2ms --for 10ms --rotate 1K
        [ $result -lt 2 ] || [ $function = open ] || fail "expected status 0 or 1" # of one for reading, it is 2
        [ $result = 0 ] || grep -q "$said" "$directory/err" || fail "expected the reason"
        [ "$(grep -cv "^decstats: " "$directory/err")" = 0 ] || fail "expected messages"
        for one in "$directory"/*.dcap; do [ ! -e "$one" ] || is_sound "$one"; done
    done
done

# A repair that gets no further leaves the old file alone.
"$tool" capture sample:trouble "$file" --for 0s 2>"$directory/err" || exit 1
for function in write fsync; do
    with $function 1 error:$EDQUOT repair "$file" "$directory/new.dcap"
    [ $result = 1 ] && grep -q "^decstats: $directory/new.dcap: $said\$" "$directory/err" || fail "expected a failure"
    [ ! -e "$directory/new.dcap" ] || fail "left behind"
    is_sound "$file"
done

# A host is told when it opens, and publishing needs nothing any more.
mkdir "$directory/live"
with posix_fallocate 1 error:$EDQUOT simulate idle --name a --directory "$directory/live" --for 0s
grep -q "^decstats: cannot create $directory/live/a.decstats with [0-9]* bytes: $said\$" "$directory/err" || fail "expected a refusal"
[ -z "$(ls -A "$directory/live")" ] || fail "left behind: $(ls -A "$directory/live")"
exit $status
