#!/bin/sh
# tool_test.sh PREFIX LIBDIR VERSION: decstats runs from its prefix, with the library that was installed with it.
set -eu
prefix=$(readlink -f "$1") libdir=$2 version=$3
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
unset LD_LIBRARY_PATH
cd "$scratch"

"$prefix/bin/decstats" demo idle --level debug --component usage --component clock-recovery >actual
cat >expected <<'END'
Clock Recovery
  Tracking Mode         : DISABLE 
  Current PCR           : 0x000000000 (90K)
  Current PCR (reg val) : 0x000000000 (90K)
  PCR Delta (Enc vs Reg): 0ms
  PCR reg Vs TS Delta   : 0 ms (Average value)
  MinMax PCR Vs TS Delta: 0 ms/0 ms (In the last 0 sec)	Extremas min/max=0ms/0ms)
  MAF DeltaClk div fact : 0
Usage
  Start                 : 0
  Stop                  : 0
  Get Stats             : 0
  Get Info              : 0
  Configure             : 0
  Capture               : 0
  Clear                 : 0
  Load Config           : 0
  Save Config           : 0
END
diff expected actual

"$prefix/bin/decstats" version >actual
grep -qxF "Library    : $prefix/$libdir/libstats.so.$version" actual || { cat actual; exit 1; }

# Without the library, the message names what was looked for, where, and what to do.
mkdir bin
cp "$prefix/bin/decstats" bin
if bin/decstats demo idle 2>actual; then echo "decstats runs without its library"; exit 1; fi
what="decstats: libstats.so.1: cannot be loaded as the report library: cannot open shared object file: No such file or directory"
grep -qx "$what; looked in /.*, and --library FILE names another" actual || { cat actual; exit 1; }
