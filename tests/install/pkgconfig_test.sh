#!/bin/sh
# pkgconfig_test.sh LIBRARIES SOURCES CC VERSION EXAMPLES: a program in C builds with plain cc and what pkg-config says of the
# folder LIBRARIES, with the shared services and with the archive of them, and prints what it should. So does one that calls no
# service itself, with every linker and the option that makes them drop what is not used.
set -eu
libraries=$1 sources=$2 cc=$3 version=$4 examples=$5
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
export PKG_CONFIG_LIBDIR="$libraries/pkgconfig" LD_LIBRARY_PATH="$libraries"

pkg-config --validate libstats libhostsvc libstatspublish
for module in libstats libhostsvc libstatspublish; do
    found=$(pkg-config --modversion $module)
    [ "$found" = "$version" ] || { echo "pkg-config finds $module $found"; exit 1; }
done

# shellcheck disable=SC2046 # lists of words
{
    "$cc" -o "$scratch/shared" "$sources/host.c" $(pkg-config --cflags --libs libstats libhostsvc)
    "$cc" -o "$scratch/archive" "$sources/host.c" $(pkg-config --cflags --libs libstats) \
        "$(pkg-config --variable=libdir libhostsvc)/libhostsvc.a"
    for linker in bfd gold lld; do
        "$cc" -fuse-ld=$linker -Wl,--as-needed -o "$scratch/$linker" "$examples/linked_host.c" \
            $(pkg-config --cflags --libs libstats libhostsvc)
    done
}
for program in shared archive; do
    "$scratch/$program" >"$scratch/actual"
    diff "$sources/host_c.txt" "$scratch/actual"
done
for linker in bfd gold lld; do
    "$scratch/$linker" >"$scratch/actual" || { echo "linked with $linker"; exit 1; }
    grep -qx '  Get Stats  *: 1024 (Last One: Never)' "$scratch/actual"
done

# A publishing host needs no other library.
# shellcheck disable=SC2046 # lists of words
"$cc" -std=c11 -o "$scratch/publishing" "$examples/publishing_host.c" $(pkg-config --cflags --libs libstatspublish)
"$scratch/publishing" "$scratch" || { echo "does not publish"; exit 1; }
