#!/bin/sh
# reproducible_test.sh FIRST SCRATCH: what is delivered is the same to the bit whenever, wherever and by whomever it is built. The
# tree in FIRST has its packages, in which all of it is; another copy of it builds them in SCRATCH, with everything different that a
# build should not depend on: names of folders, dates and order of files, time zone, language, user, umask and number of jobs.
set -eu
first=$(readlink -f "$1") scratch=$2
unset SOURCE_DATE_EPOCH
status=0

rm -rf "$scratch"
mkdir -p "$scratch"
scratch=$(readlink -f "$scratch")
second=$scratch/another.place/with-a-longer-name/decoder-stats
(
    export TZ=America/Adak LC_ALL=C.UTF-8 LANG=C.UTF-8 LANGUAGE=de HOME="$scratch" USER=second LOGNAME=second
    umask 077
    mkdir -p "$second"
    # Many file systems list files in the order in which they were written.
    (cd "$first" && find . -path ./build -prune -o ! -type d -print | sort -r | tar -cf - -T -) | tar -xf - -C "$second"
    find "$second" -exec touch -h -d '2001-02-03 04:05:06' {} +
    cd "$second"
    DEB_BUILD_OPTIONS=parallel=3 scripts/package >"$scratch/log" 2>&1
) || { tail -n 60 "$scratch/log"; exit 1; }

# explain NAME FILE FILE: in which part two files differ. Runs in a process of its own, as it calls itself.
explain()
(
    folder=$scratch/difference/$1
    first=$2 second=$3
    mkdir -p "$folder/1" "$folder/2"
    case $1 in
    *.deb)
        for side in 1 2; do
            [ $side -eq 1 ] && package=$first || package=$second
            ar tvO "$package" >"$folder/$side/members"
            dpkg-deb --ctrl-tarfile "$package" | tar -tv --full-time -f - >"$folder/$side/control"
            dpkg-deb --fsys-tarfile "$package" | tar -tv --full-time -f - >"$folder/$side/data"
            dpkg-deb --raw-extract "$package" "$folder/$side/files"
        done
        diff -r --no-dereference "$folder/1" "$folder/2" || true
        ;;
    *.a)
        for side in 1 2; do
            [ $side -eq 1 ] && archive=$first || archive=$second
            ar tvO "$archive" >"$folder/$side.members"
            (cd "$folder/$side" && ar x "$archive")
        done
        diff "$folder/1.members" "$folder/2.members" || true
        (cd "$folder/1" && ls) | while IFS= read -r member; do
            cmp -s "$folder/1/$member" "$folder/2/$member" || explain "$1.$member" "$folder/1/$member" "$folder/2/$member"
        done
        ;;
    *)
        readelf -SW "$first" | sed -n 's/^ *\[ *[0-9]*\] \([.][^ ]*\) .*/\1/p' | sort -u | while IFS= read -r section; do
            for side in 1 2; do
                [ $side -eq 1 ] && binary=$first || binary=$second
                readelf -x "$section" "$binary" >"$folder/$side/hex" 2>&1 || true
                readelf -p "$section" "$binary" >"$folder/$side/text" 2>&1 || true
            done
            if ! cmp -s "$folder/1/hex" "$folder/2/hex"; then
                echo "  $1: section $section"
                diff -a "$folder/1/text" "$folder/2/text" | grep -a '^[<>]' | cut -c 1-160 | head -n 6 | sed 's/^/    /'
            fi
        done
        ;;
    esac
)

one=$first/build/package another=$second/build/package
packages=$(cd "$one" && echo *.deb)
[ "$packages" = "$(cd "$another" && echo *.deb)" ] || { echo "the builds deliver different packages"; exit 1; }
for name in libstats1 libhostsvc1 libstatspublish1 libstats-dev decstats decstats-serve; do
    case $packages in *"${name}_"*) ;; *) echo "no $name was built" && exit 1 ;; esac
done
for package in $packages; do
    echo "    $package"
    if ! cmp "$one/$package" "$another/$package"; then
        explain "$package" "$one/$package" "$another/$package" | head -n 60
        status=1
    fi
    dpkg-deb -x "$one/$package" "$scratch/unpacked"
    dpkg-deb -x "$another/$package" "$scratch/unpacked-too"
done
for folder in "$first" "$scratch"; do
    ! grep -rlF -e "$folder" "$scratch/unpacked" "$scratch/unpacked-too" || { echo "these name the folder of a build: $folder"; status=1; }
done
[ $status -ne 0 ] || { echo "the same to the bit"; rm -rf "$scratch"; }
exit $status
