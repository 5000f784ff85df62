#!/bin/sh
# unhardened_test.sh CC: hardening_test.sh finds each protection that a file was built without, and nothing else.
set -eu
cc=$1
check=$(cd "$(dirname "$0")" && pwd)/hardening_test.sh
directory=$(mktemp -d)
trap 'rm -rf "$directory"' EXIT
cd "$directory"
status=0

cat >probe.c <<'end'
#include <stdio.h>
#include <string.h>
int main(int nCount, char** ppArguments)
{
    char szText[64];
    strcpy(szText, ppArguments[nCount - 1]);
    return puts(szText) < 0;
}
end
cat >relocation.s <<'end'
    .section .note.GNU-stack, "", %progbits
    .text
    .globl address
address:
    .quad main
end
cat >writable.s <<'end'
    .section .note.GNU-stack, "", %progbits
    .section .patched, "awx", %progbits
    .byte 0
end

# build library|lazy|program OPTION...: what the options leave alone is as cmake/hardening.cmake has it.
build()
{
    case $1 in
    library) shape="-fPIC -shared -fno-plt -Wl,-z,now" ;;
    lazy) shape="-fPIC -shared -fplt -Wl,-z,lazy" ;;
    program) shape="-fPIE -pie -fno-plt -Wl,-z,now" ;;
    esac
    shift
    # shellcheck disable=SC2086 # a list of words
    "$cc" -O2 $shape -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2 -fstack-protector-strong -Wl,-z,relro -Wl,-z,noexecstack \
        probe.c -o probe "$@" 2>log || { cat log >&2; exit 1; }
}

# finds KIND TEXT OPTION...: with the options the check fails, with one line that holds TEXT.
finds()
{
    kind=$1 text=$2
    shift 2
    build "$kind" "$@"
    if "$check" "$kind" ./probe >log 2>&1 || ! grep -qF -- "$text" log || [ "$(wc -l <log)" -ne 1 ]; then
        echo "$kind built with $*: expected one line with '$text', found:" >&2
        cat log >&2
        status=1
    fi
}

for kind in library lazy program; do
    build "$kind"
    "$check" "$kind" ./probe || status=1
    finds "$kind" "becomes read-only" -Wl,-z,norelro
    [ "$kind" = lazy ] || finds "$kind" "not bound at load" -Wl,-z,lazy
    finds "$kind" "the stack is executable" -Wl,-z,execstack
    finds "$kind" "writable and executable" writable.s
    finds "$kind" "no stack protector" -fno-stack-protector
    finds "$kind" "no checked function" -U_FORTIFY_SOURCE
done
finds lazy "whatever the host wants" -Wl,-z,now
finds lazy "without the linkage table" -fno-plt
finds library "relocations in code" relocation.s -Wl,-z,notext
finds program "not a position-independent executable" -no-pie
finds program "not a position-independent executable" -shared
exit $status
