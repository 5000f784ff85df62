#!/bin/sh
# pkgconfig_test.sh LIBRARIES SOURCES CC VERSION: a program in C builds with plain cc and what pkg-config says of the folder
# LIBRARIES, with the shared services and with the archive of them, and prints what it should.
set -eu
libraries=$1 sources=$2 cc=$3 version=$4
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
export PKG_CONFIG_LIBDIR="$libraries/pkgconfig" LD_LIBRARY_PATH="$libraries"

pkg-config --validate libstats libhostsvc
for module in libstats libhostsvc; do
    found=$(pkg-config --modversion $module)
    [ "$found" = "$version" ] || { echo "pkg-config finds $module $found"; exit 1; }
done

# shellcheck disable=SC2046 # lists of words
{
    "$cc" -o "$scratch/shared" "$sources/host.c" $(pkg-config --cflags --libs libstats libhostsvc)
    "$cc" -o "$scratch/archive" "$sources/host.c" $(pkg-config --cflags --libs libstats) \
        "$(pkg-config --variable=libdir libhostsvc)/libhostsvc.a"
}
for program in shared archive; do
    "$scratch/$program" >"$scratch/actual"
    diff "$sources/host_c.txt" "$scratch/actual"
done
