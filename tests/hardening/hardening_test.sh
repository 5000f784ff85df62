#!/bin/sh
# hardening_test.sh library|lazy|program FILE...: each file was built with the options of cmake/hardening.cmake. A "lazy" one is
# a library whose host chooses when symbols bind. READELF names the tool for files of another processor.
set -eu
readelf=${READELF:-readelf}
kind=$1
shift
status=0
fail() { echo "$file: $*" >&2; status=1; }

for file in "$@"; do
    segments=$("$readelf" -lW "$file")
    dynamic=$("$readelf" -dW "$file")
    imported=$("$readelf" --dyn-syms -W "$file" | awk '$7 == "UND" {sub(/@.*/, "", $8); print $8}')

    echo "$segments" | grep -q ' GNU_RELRO ' || fail "no segment that becomes read-only after relocation"
    if [ "$kind" = lazy ]; then
        ! echo "$dynamic" | grep -Eq 'BIND_NOW|Flags:.* NOW' || fail "symbols are bound at load, whatever the host wants"
        early=$("$readelf" --dyn-syms -rW "$file" | awk '
            $3 ~ /_GLOB_DAT$/ {sub(/@.*/, "", $5); bound[$5] = 1}
            $7 == "UND" && $5 == "GLOBAL" && $4 != "OBJECT" {sub(/@.*/, "", $8); if ($8 in bound) print $8}')
        [ -z "$early" ] || fail "functions are called without the linkage table, so they bind at load:" $early
    else
        echo "$dynamic" | grep -q '(FLAGS) .*BIND_NOW' || fail "symbols are not bound at load, so their table stays writable"
    fi
    flags=$(echo "$segments" | awk '$1 == "GNU_STACK" {print $7}')
    [ "$flags" = RW ] || fail "the stack is executable, or nothing says that it is not: '$flags'"
    ! echo "$segments" | grep -Eq '^ *LOAD .* RWE ' || fail "a segment is writable and executable"
    ! echo "$dynamic" | grep -q TEXTREL || fail "relocations in code"
    echo "$imported" | grep -qx '__stack_chk_fail' || fail "no stack protector"
    echo "$imported" | grep -q '^__.*[a-z]_chk$' || fail "no checked function of the C library"
    [ "$kind" != program ] ||
        { "$readelf" -hW "$file" | grep -q 'Type: *DYN ' && echo "$dynamic" | grep -q '(FLAGS_1) .*PIE'; } ||
        fail "not a position-independent executable"
done
[ "$status" -ne 0 ] || echo "$kind: $# checked"
exit $status
