#!/bin/sh
# reproducible_test.sh build|packages SOURCE SCRATCH: what is delivered is the same to the bit whenever, wherever and by whomever
# it is built. Two copies of the tree are built one after the other, in folders with different names and with everything else
# different that a build should not depend on. CC and CXX name the compilers.
set -eu
kind=$1 source=$2 scratch=$3
case $kind in
build) ;;
packages)
    [ -x "$source/scripts/package" ] || { echo "no scripts/package"; exit 77; }
    [ "$(id -u)" -eq 0 ] || { echo "not root"; exit 77; }
    for tool in dpkg-buildpackage dh lintian; do
        command -v $tool >/dev/null || { echo "$tool is missing"; exit 77; }
    done
    ;;
*) exit 2 ;;
esac
unset SOURCE_DATE_EPOCH
status=0

# copy FOLDER SORT_OPTION: the tree, its files written in this order, which is the order in which many file systems list them.
copy()
{
    mkdir -p "$1"
    (cd "$scratch/tree" && find . ! -type d | sort "$2" | tar -cf - -T -) | tar -xf - -C "$1"
}

# build TREE FOLDER JOBS: the files to deliver, into FOLDER. Packages have a folder of their own in the tree.
build()
{
    cd "$1"
    case $kind in
    build) { cmake --preset release -B "$2" -DSTATS_TESTS=OFF && cmake --build "$2" -j "$3"; } >"$1.log" 2>&1 ;;
    packages) DEB_BUILD_OPTIONS="parallel=$3" scripts/package >"$1.log" 2>&1 ;;
    esac || { cat "$1.log"; exit 1; }
}

rm -rf "$scratch"
"$source/scripts/copy-tree" "$scratch/tree"
scratch=$(readlink -f "$scratch")
tree_one=$scratch/one one=$tree_one/build/release
tree_another=$scratch/another.place/with-a-longer-name/decoder-stats another=$scratch/outside-the-tree
if [ "$kind" = packages ]; then
    one=$tree_one/build/package another=$tree_another/build/package
fi
(
    export TZ=Pacific/Kiritimati LC_ALL=C LANG=C HOME="$scratch" USER=first LOGNAME=first
    umask 022
    copy "$tree_one" -u
    find "$tree_one" -exec touch -h -d '2001-02-03 04:05:06' {} +
    build "$tree_one" "$one" 1
)
(
    export TZ=America/Adak LC_ALL=C.UTF-8 LANG=C.UTF-8 LANGUAGE=de USER=second LOGNAME=second
    umask 077
    copy "$tree_another" -r
    build "$tree_another" "$another" 2
)

# The delivered files in the folder of a build.
delivered()
{
    cd "$1"
    case $kind in
    build) find . \( -name 'libstats.so*' -o -name 'libhostsvc.so*' -o -name libhostsvc.a -o -name decstats \) ! -type d ;;
    packages) find . -maxdepth 1 -name '*.deb' ;;
    esac | sort
}

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

(delivered "$one") >"$scratch/files"
(delivered "$another") >"$scratch/other-files"
diff "$scratch/files" "$scratch/other-files" || { echo "the builds deliver different files"; exit 1; }
case $kind in
build) expected="libstats.so libhostsvc.so libhostsvc.a decstats" ;;
packages) expected=.deb ;;
esac
for name in $expected; do
    grep -q "$name" "$scratch/files" || { echo "no $name was built"; exit 1; }
done
while IFS= read -r file; do
    if [ -h "$one/$file" ]; then
        [ "$(readlink "$one/$file")" = "$(readlink "$another/$file")" ] || { echo "$file: the links differ"; status=1; }
    elif ! cmp "$one/$file" "$another/$file"; then
        explain "${file##*/}" "$one/$file" "$another/$file" | head -n 60
        status=1
    fi
    ! grep -qF -e "$scratch" "$one/$file" || { echo "$file names the folder of its build"; status=1; }
done <"$scratch/files"

[ $status -ne 0 ] || { echo "the same to the bit:"; sed 's,^\./,    ,' "$scratch/files"; rm -rf "$scratch"; }
exit $status
