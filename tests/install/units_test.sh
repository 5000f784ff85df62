#!/bin/sh
# units_test.sh FOLDER PROGRAMS: systemd finds nothing wrong with the units in FOLDER, whose programs are in the folder PROGRAMS, and
# what the services may do is little: it gives each an exposure of 2.0 at most. Exits with 77 without systemd.
set -eu
command -v systemd-analyze >/dev/null || { echo "systemd is missing"; exit 77; }
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
# It looks for the programs, too, which are not where packages put them.
for unit in "$1"/*; do sed "s|=/usr/bin/|=$2/|" "$unit" >"$folder/${unit##*/}"; done
verify()
{
    (cd "$folder" && systemd-analyze verify --man=no "$@" 2>&1) || echo "status $?"
}
wrong=$(verify decstats-serve.service decstats-serve.socket decstats-capture@.service)
[ -z "$wrong" ] || { echo "$wrong"; exit 1; }
sed -i 's/^MemoryMax=.*/MemoryMost=1G/' "$folder/decstats-serve.service"
[ -n "$(verify decstats-serve.service)" ] || { echo "a word that systemd does not know passes"; exit 1; }

cd "$1"
for unit in *.service; do
    systemd-analyze security --offline=true --no-pager --threshold=20 "$unit" >/dev/null ||
        { systemd-analyze security --offline=true --no-pager "$unit"; exit 1; }
done
# The measure fails for one without any of that.
printf '[Service]\nExecStart=/bin/true\n' >"$folder/bare.service"
! systemd-analyze security --offline=true --no-pager --threshold=20 "$folder/bare.service" >/dev/null || { echo "anything passes"; exit 1; }
