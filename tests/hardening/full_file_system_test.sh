#!/bin/sh
# full_file_system_test.sh TOOL...: the tool when the file system fills up in the middle of an output. TOOL may start with an
# emulator. Needs a mount, which only this process and its children see; exits with 77 where that is not allowed.
set -u
page=$(getconf PAGESIZE)

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
mkdir /mnt/full
status=0
fail() { echo "$*" >&2; status=1; }

# mount_pages COUNT: an empty file system in /mnt/full, with space for so many pages of files.
mount_pages()
{
    ! mountpoint -q /mnt/full || umount /mnt/full
    mount -t tmpfs -o size=$(($1 * page)) tmpfs /mnt/full || exit 1
}

# expect_failure STATUS TEXT
expect_failure()
{
    [ "$1" = 1 ] || fail "expected status 1 with '$2', got $1"
    [ "$(cat /mnt/err)" = "$2" ] || fail "expected '$2', got '$(cat /mnt/err)'"
}

# The records are smaller than a page. The old file takes one, the first three records the rest.
mount_pages 4
echo old >/mnt/full/tdemux.rec
"$@" sample idle /mnt/full 2>/mnt/err
expect_failure $? "decstats: /mnt/full/audio.rec: No space left on device"
[ "$(ls -A /mnt/full)" = tdemux.rec ] || fail "left behind: $(ls -A /mnt/full)"
[ "$(cat /mnt/full/tdemux.rec)" = old ] || fail "the old file has changed"

# With space for all of them and the old one, the same command succeeds.
mount_pages 9
echo old >/mnt/full/tdemux.rec
"$@" sample idle /mnt/full || fail "failed with space for all records: $?"
[ "$(find /mnt/full -name '*.rec' | wc -l)" -eq 8 ] || fail "expected eight records: $(ls -A /mnt/full)"

# A file system that is full before the first file.
mount_pages 1
echo old >/mnt/full/old
"$@" sample idle /mnt/full 2>/mnt/err
expect_failure $? "decstats: /mnt/full/tdemux.rec: No space left on device"
[ "$(ls -A /mnt/full)" = old ] || fail "left behind: $(ls -A /mnt/full)"

# A part of the output fits: the command that could not write the rest says so.
mount_pages 1
"$@" demo extreme --level debug >/mnt/full/report 2>/mnt/err
expect_failure $? "decstats: standard output: No space left on device"
[ "$(wc -c </mnt/full/report)" -eq "$page" ] || fail "expected $page bytes before the end, got $(wc -c </mnt/full/report)"
exit $status
