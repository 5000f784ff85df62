#!/bin/sh
# full_file_system_test.sh DECSTATS...: a capture onto a file system that is full or may not be written. DECSTATS may start with
# an emulator. Needs a mount, which only this process and its children see; exits with 77 where that is not allowed.
set -u

if [ "${1-}" != --mounted ]; then
    for own in --mount "--map-root-user --mount"; do
        # shellcheck disable=SC2086 # a list of words
        if unshare $own sh -c 'mount -t tmpfs tmpfs /mnt' 2>/dev/null; then exec unshare $own "$0" --mounted "$@"; fi
    done
    echo "skipped: no file system can be mounted here"
    exit 77
fi
shift
mount -t tmpfs tmpfs /mnt || exit 1
mkdir /mnt/small
mount -t tmpfs -o size=256k tmpfs /mnt/small || exit 1
file=/mnt/small/a.dcap
status=0
fail() { echo "$*" >&2; status=1; }

# Nothing fits: nothing is left.
head -c 1m /dev/zero >/mnt/small/filler 2>/dev/null
"$@" capture sample:trouble $file --for 0s 2>/mnt/err
[ $? = 1 ] || fail "full: expected status 1"
grep -q "^decstats: $file: No space left on device; snapshots are lost until there is space\$" /mnt/err || fail "full: $(cat /mnt/err)"
grep -q "^decstats: $file: 1 snapshot could not be written\$" /mnt/err || fail "full: $(cat /mnt/err)"
[ ! -e $file ] || fail "full: left behind $(ls -l $file)"

# It fills up while captured, and has space again: what was written is whole, and the gap is told.
rm /mnt/small/filler
"$@" capture sample:trouble $file --every 20ms --for 30s 2>/mnt/err &
process=$!
wait_for() { condition=$1; shift; for _ in $(seq 400); do eval "$condition" && return; sleep 0.05; done; fail "waited in vain: $condition"; }
wait_for '[ -s $file ]'
head -c 1m /dev/zero >/mnt/small/filler 2>/dev/null
wait_for 'grep -q "No space left on device" /mnt/err'
"$@" check $file >/mnt/out 2>&1 || fail "while full: $(cat /mnt/out)"
rm /mnt/small/filler
wait_for '"$@" history $file | grep -q ": no space\$"' "$@"
kill -TERM $process
wait $process
[ $? = 1 ] || fail "afterwards: expected status 1, for snapshots are lost"
"$@" check $file >/mnt/out 2>&1 || fail "afterwards: $(cat /mnt/out)"
"$@" history $file | grep -q "end of the capture" || fail "afterwards: the capture has not ended in order"

# May not be written.
mount -o remount,ro /mnt/small
"$@" capture sample:trouble $file --for 0s 2>/mnt/err
[ $? = 1 ] || fail "read-only: expected status 1"
grep -qx "decstats: $file: Read-only file system" /mnt/err || fail "read-only: $(cat /mnt/err)"
"$@" check $file >/mnt/out 2>&1 || fail "read-only: $(cat /mnt/out)"
exit $status
