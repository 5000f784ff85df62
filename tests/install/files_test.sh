#!/bin/sh
# files_test.sh PREFIX LIBDIR LIST VERSION SOURCE BUILD: what is installed is LIST, with LIBDIR and VERSION for the words in @,
# the libraries go by the names that their users look for, and nothing names a folder of the source, the build or the prefix.
set -eu
prefix=$1 libdir=$2 list=$3 version=$4 source=$5 build=$6
status=0
fail() { echo "$*" >&2; status=1; }

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
sed "s|@LIBDIR@|$libdir|; s/@VERSION@/$version/" "$list" | LC_ALL=C sort >"$scratch/expected"
# The targets file of a configuration carries its name.
(cd "$prefix" && find . ! -type d -printf '%P %l\n' | sed 's/ $//; s/ / -> /; s/-targets-[a-z]*\.cmake/-targets-CONFIGURATION.cmake/') |
    LC_ALL=C sort >"$scratch/installed"
diff "$scratch/expected" "$scratch/installed" || fail "the installed files differ"

for library in stats hostsvc statspublish; do
    file=$prefix/$libdir/lib$library.so.$version
    soname=$(readelf -d "$file" | sed -n 's/.*(SONAME).*\[\(.*\)\]/\1/p')
    [ "$soname" = "lib$library.so.1" ] || fail "$file has the SONAME $soname"
    ! readelf -d "$file" | grep -E '\((RPATH|RUNPATH)\)' || fail "$file has a run path"
done
run_path=$(readelf -d "$prefix/bin/decstats" | sed -n 's/.*(RUNPATH).*\[\(.*\)\]/\1/p')
[ "$run_path" = "\$ORIGIN/../$libdir" ] || fail "decstats has the run path $run_path"

# "./src" is no folder of this machine, even if the source is in /src.
named=$(LC_ALL=C grep -rlP "(?<!\\.)(\\Q$source\\E|\\Q$build\\E|\\Q$prefix\\E)" "$prefix" || true)
[ -z "$named" ] || fail "a folder of this machine is named in: $named"
exit $status
