#!/bin/sh
# hardening_test.sh library|program FILE...: each file was built with the options of cmake/hardening.cmake. READELF names the
# tool for files of another processor.
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
    echo "$dynamic" | grep -q '(FLAGS) .*BIND_NOW' || fail "symbols are not bound at load, so their table stays writable"
    flags=$(echo "$segments" | awk '$1 == "GNU_STACK" {print $7}')
    [ "$flags" = RW ] || fail "the stack is executable, or nothing says that it is not: '$flags'"
    ! echo "$segments" | grep -Eq '^ *LOAD .* RWE ' || fail "a segment is writable and executable"
    ! echo "$dynamic" | grep -q TEXTREL || fail "relocations in code"
    echo "$imported" | grep -qx '__stack_chk_fail' || fail "no stack protector"
    echo "$imported" | grep -q '^__.*[a-z]_chk$' || fail "no checked function of the C library"
    [ "$kind" = library ] ||
        { "$readelf" -hW "$file" | grep -q 'Type: *DYN ' && echo "$dynamic" | grep -q '(FLAGS_1) .*PIE'; } ||
        fail "not a position-independent executable"
done
[ "$status" -ne 0 ] || echo "$kind: $# checked"
exit $status
