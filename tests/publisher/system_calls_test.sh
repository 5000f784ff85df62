#!/bin/sh
# system_calls_test.sh HOST: between opening and closing a host publishes without a system call. Needs strace, or exits with 77.
set -eu
host=$1
directory=$(mktemp -d -p /dev/shm)
trap 'rm -rf "$directory"' EXIT
strace -o "$directory/probe" true 2>/dev/null || { echo "skipped: strace is not installed, or may not trace"; exit 77; }

strace -f -o "$directory/trace" "$host" "$directory" 2>/dev/null
grep -q 'write(2, "begin' "$directory/trace" && grep -q 'write(2, "end' "$directory/trace" || { echo "no begin and end in the trace" >&2; exit 1; }
calls=$(sed -n '/write(2, "begin/,/write(2, "end/{/write(2, "\(begin\|end\)/!p}' "$directory/trace")
[ -z "$calls" ] || { echo "system calls while publishing:"; echo "$calls"; exit 1; } >&2

# The same look finds those of opening and closing.
for call in renameat fallocate unlinkat; do
    grep -q "$call" "$directory/trace" || { echo "no $call in the trace: is it one of this host?" >&2; exit 1; }
done
echo "no system call in 90000 calls of the library"
