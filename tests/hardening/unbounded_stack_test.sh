#!/bin/sh
# unbounded_stack_test.sh CC: stack_test.sh adds up a chain of calls across objects, and refuses what it cannot add up.
set -eu
cc=$1
check=$(cd "$(dirname "$0")" && pwd)/stack_test.sh
directory=$(mktemp -d)
trap 'rm -rf "$directory"' EXIT
cd "$directory"
status=0

cat >exports.map <<'end'
{
    global:
        outer;
    local:
        *;
};
end
cat >library.c <<'end'
void inner(char*);
void outer(void) { char buffer[3000]; inner(buffer); inner(buffer + 1); }
end
cat >service.c <<'end'
void external(char*);
void inner(char* p) { char buffer[2000]; external(buffer); p[0] = buffer[0]; }
end
cat >recursion.c <<'end'
void outer(void);
void inner(char* p) { char buffer[100]; outer(); p[0] = buffer[0]; }
end
cat >dynamic.c <<'end'
void external(char*);
void inner(char* p) { char buffer[p[0]]; external(buffer); p[0] = buffer[0]; }
end
cat >pointer.c <<'end'
extern void (*external)(char*);
void inner(char* p) { char buffer[100]; external(buffer); p[0] = buffer[0]; }
end
for source in *.c; do
    "$cc" -O1 -w -fno-stack-protector -fcallgraph-info=su -c "$source" -o "${source%c}o"
done

# The frames hold their arrays, return addresses and little else.
"$check" 16384 exports.map library.o -- service.o >log
awk '$1 == "outer" && $2 >= 3000 && $2 < 3200 && $3 >= $2 + 2000 && $3 < $2 + 2200 && $5 == "inner" {found = 1} END {exit !found}' log ||
    { echo "expected about 3000 and 5000 bytes, found:" >&2; cat log >&2; status=1; }

# refuses TEXT ARGUMENT...: the check fails with one line that holds TEXT.
refuses()
{
    text=$1
    shift
    if "$check" "$@" >/dev/null 2>log || ! grep -qF -- "$text" log || [ "$(wc -l <log)" -ne 1 ]; then
        echo "stack_test.sh $*: expected one line with '$text', found:" >&2
        cat log >&2
        status=1
    fi
}

refuses "but the limit is 5000" 5000 exports.map library.o -- service.o
refuses "returns to outer" 16384 exports.map library.o recursion.o
refuses "inner: its stack has no bound" 16384 exports.map library.o dynamic.o
refuses "inner: calls through a pointer" 16384 exports.map library.o pointer.o
refuses "outer: in no graph" 16384 exports.map service.o
echo 'edge: { sourcename: "outer" targetname: "elsewhere" label: "library.c:2:1" }' >>library.ci
refuses "outer: calls elsewhere, which no graph has" 16384 exports.map library.o service.o
exit $status
