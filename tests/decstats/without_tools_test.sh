#!/bin/sh
# without_tools_test.sh CMAKE SOURCE: STATS_TOOLS=OFF builds and installs the libraries without CLI11, and nothing of the tool.
set -eu
cmake=$1 source=$2
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cd "$scratch"

configure="$cmake -G Ninja -S $source -DSTATS_WERROR=ON -DCMAKE_DISABLE_FIND_PACKAGE_CLI11=ON -DCMAKE_INSTALL_PREFIX=$scratch/prefix"
# shellcheck disable=SC2086 # a list of words
if $configure -B with >log 2>&1; then echo "the tool was configured without CLI11" >&2; exit 1; fi
# shellcheck disable=SC2086 # a list of words
{ $configure -B without -DSTATS_TOOLS=OFF && "$cmake" --build without && "$cmake" --install without; } >log 2>&1 || { cat log >&2; exit 1; }

for file in libstats.so libhostsvc.so libhostsvc.a; do
    [ -n "$(find prefix -name "$file")" ] || { echo "$file is not installed" >&2; exit 1; }
done
left=$(find prefix without -name '*decstats*' ! -path '*/man/*')
[ -z "$left" ] || { echo "of the tool: $left" >&2; exit 1; }
