#!/bin/sh
# full_directory_test.sh HOST...: opening where the file system is full, has no inode left or may not be written is an error, and
# leaves nothing behind; where it has room for one publisher, that one publishes although the rest fills up. HOST may start with
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
mkdir /mnt/full
status=0
fail() { echo "$*" >&2; status=1; }

# mount_with OPTIONS: an empty file system in /mnt/full
mount_with()
{
    ! mountpoint -q /mnt/full || umount /mnt/full
    mount -t tmpfs -o "$1" tmpfs /mnt/full || exit 1
}

# expect_refusal WHAT TEXT
expect_refusal()
{
    what=$1 text=$2
    shift 2
    "$@" /mnt/full 2>/mnt/err
    code=$?
    [ "$code" = 2 ] || fail "$what: expected status 2, got $code"
    grep -qx "cannot create /mnt/full/$text" /mnt/err || fail "$what: expected 'cannot create /mnt/full/$text', got '$(cat /mnt/err)'"
    [ -z "$(ls -A /mnt/full)" ] || [ "$(ls -A /mnt/full)" = filler ] || fail "$what: left behind: $(ls -A /mnt/full)"
}

for size in 4k 32k 64k; do
    mount_with size=$size
    expect_refusal "size $size" 'burst.decstats with [0-9]* bytes: No space left on device' "$@"
done
mount_with size=1m
head -c 1m /dev/zero >/mnt/full/filler
expect_refusal "a full file system" 'burst.decstats with [0-9]* bytes: No space left on device' "$@"
mount_with nr_inodes=1
expect_refusal "no inode left" '.burst.decstats: No space left on device' "$@"
mount_with ro
expect_refusal "read-only" '.burst.decstats: Read-only file system' "$@"

# Room for one: opening takes it all, so the file system may be full from then on.
mount_with size=128k
"$@" /mnt/full 2>/mnt/err || fail "room for one: $? $(cat /mnt/err)"
grep -qx end /mnt/err || fail "room for one: did not publish"
[ -z "$(ls -A /mnt/full)" ] || fail "room for one: left behind: $(ls -A /mnt/full)"
exit $status
