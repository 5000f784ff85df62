#!/bin/sh
# exports_test.sh LIBRARY MAP HEADER: the library exports what the map names and the header declares, needs libc alone, and is
# never unloaded. NM and READELF name the tools for libraries of another processor.
set -eu
nm=${NM:-nm} readelf=${READELF:-readelf}
library=$1 map=$2 header=$3
status=0
fail() { echo "$*" >&2; status=1; }

exported=$("$nm" -D --defined-only "$library" | awk '{print $3}' | sort)
mapped=$(sed -n '/global:/,/local:/s/^ *\([A-Za-z_]*\);$/\1/p' "$map" | sort)
declared=$(sed -n 's/^STATS_PUBLISH_API [^(]*[ *]\([A-Za-z_]*\)(.*/\1/p' "$header" | sort)
[ "$exported" = "$mapped" ] || fail "exported:
$exported
but the map names:
$mapped"
[ "$declared" = "$mapped" ] || fail "declared:
$declared
but the map names:
$mapped"
[ "$(echo "$mapped" | wc -l)" -eq 12 ] || fail "the map should name twelve functions"

# On aarch64 the stack guard stands in libc's loader, which is always there.
needed=$("$readelf" -d "$library" | sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p' | grep -v '^ld-linux-aarch64\.so\.1$')
[ "$needed" = libc.so.6 ] || fail "needs: $needed"
undefined=$("$nm" -D --undefined-only "$library" | awk '$1 == "U" && $2 !~ /@GLIBC_/ {print $2}')
[ -z "$undefined" ] || fail "undefined: $undefined"
"$readelf" -d "$library" | grep -q 'FLAGS_1.*NODELETE' || fail "may be unloaded under a handler of forks"
exit $status
