#!/bin/sh
# cmake_package_test.sh PREFIX SOURCES CMAKE GENERATOR CC CXX EXAMPLES: a CMake project finds the package, and its programs in C
# and C++ build and print what they should, with every linker.
set -eu
prefix=$1 sources=$2 cmake=$3 generator=$4 cc=$5 cxx=$6 examples=$7
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
{
    "$cmake" -S "$sources" -B "$scratch" -G "$generator" -DCMAKE_C_COMPILER="$cc" -DCMAKE_CXX_COMPILER="$cxx" \
        -DCMAKE_PREFIX_PATH="$prefix" -DEXAMPLES="$examples" && "$cmake" --build "$scratch"
} >"$scratch/log" 2>&1 || { cat "$scratch/log"; exit 1; }
for program in host_c host_cxx; do
    "$scratch/$program" >"$scratch/actual"
    diff "$sources/$program.txt" "$scratch/actual"
done
for linker in bfd gold lld; do
    "$scratch/host_$linker" >"$scratch/actual" || { echo "linked with $linker"; exit 1; }
    grep -qx '  Get Stats  *: 1024 (Last One: Never)' "$scratch/actual"
done
