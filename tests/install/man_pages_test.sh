#!/bin/sh
# man_pages_test.sh PREFIX: groff renders the installed manual pages without a warning, and a page for each function of the report
# library leads to the library's, which names it.
set -eu
command -v groff >/dev/null || { echo "groff is missing"; exit 77; }
cd "$1/share/man"
for page in man1/decstats.1 man3/libstats.3 man5/decstats-reports.5 man5/decstats-findings.5; do
    messages=$(groff -mandoc -ww -Tutf8 -z "$page" 2>&1)
    [ -z "$messages" ] || { echo "$messages"; exit 1; }
done
for page in man3/*_*.3; do
    function=${page##*/} function=${function%.3}
    grep -qx '\.so man3/libstats\.3' "$page" || { echo "$page does not lead to libstats.3"; exit 1; }
    grep -q "^\.Fn $function " man3/libstats.3 || { echo "libstats.3 does not name $function"; exit 1; }
done
