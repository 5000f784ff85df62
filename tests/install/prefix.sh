#!/bin/sh
# prefix.sh CMAKE BUILD PREFIX: installs the build and moves the result to PREFIX, so that whatever works there does not know
# where it was installed.
set -eu
cmake=$1 build=$2 prefix=$3
rm -rf "$prefix" "$prefix.before"
"$cmake" --install "$build" --prefix "$prefix.before" >"$prefix.log" || { cat "$prefix.log"; exit 1; }
mv "$prefix.before" "$prefix"
