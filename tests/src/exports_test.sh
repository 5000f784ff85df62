#!/bin/sh
# exports_test.sh LIBRARY MAP HEADER: the library exports what the map names, needs libc alone, leaves undefined only what
# HEADER (hostsvc.h) declares and the few functions of libc listed here, and holds no writable data of its own but the version
# record. NM and READELF name the tools for libraries of another processor.
set -eu
nm=${NM:-nm} readelf=${READELF:-readelf}
library=$1 map=$2 header=$3
status=0
fail() { echo "$*" >&2; status=1; }

exported=$("$nm" -D --defined-only "$library" | awk '{print $3}' | sort)
mapped=$(sed -n '/global:/,/local:/s/^ *\([A-Za-z_]*\);$/\1/p' "$map" | sort)
[ "$exported" = "$mapped" ] || fail "exported:
$exported
but the map names:
$mapped"
[ "$(echo "$mapped" | wc -l)" -eq 9 ] || fail "the map should name nine functions"

# On aarch64 the stack guard stands in libc's loader, which is always there.
needed=$("$readelf" -d "$library" | sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p' | grep -v '^ld-linux-aarch64\.so\.1$')
[ "$needed" = libc.so.6 ] || fail "needs: $needed"

services=$(sed -n 's/^HOSTSVC_API [^(]*[ *]\([A-Za-z_]*\)(.*/\1/p' "$header" | sort)
[ "$(echo "$services" | wc -l)" -eq 31 ] || fail "$header should declare 31 services"
undefined=$("$nm" -D --undefined-only "$library" | awk '$1 == "U" {print $2}')
for symbol in $undefined; do
    case $symbol in
    fprintf@* | fwrite@* | time@* | strerror@* | gai_strerror@* | strncmp@* | snprintf@* | stdout@*) ;; # what the reports call
    fputs@* | fputc@* | strlen@* | strcmp@* | memcpy@* | memset@*) ;; # what compilers make of these calls
    __fprintf_chk@* | __snprintf_chk@* | __stack_chk_fail@* | __stack_chk_guard@*) ;; # the same, hardened
    *) echo "$services" | grep -qx "$symbol" || fail "undefined, and neither a service nor listed: $symbol" ;;
    esac
done

# Local data symbols (d, b) with a size; the compiler's own bookkeeping is hidden in sections of other kinds.
data=$("$nm" -S "$library" | awk 'NF == 4 && $2 !~ /^0+$/ && $3 ~ /^[dDbB]$/ {print $4, $2}' | grep -v -e '^completed\.' -e '^__dso_handle')
[ "$data" = "QrVersionBlob 0000000000000112" ] || fail "writable data: $data"
exit $status
