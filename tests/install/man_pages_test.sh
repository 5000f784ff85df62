#!/bin/sh
# man_pages_test.sh PREFIX: groff renders the installed manual pages without a warning, and a page for each exported function leads
# to its library's, which names it.
set -eu
command -v groff >/dev/null || { echo "groff is missing"; exit 77; }
cd "$1/share/man"
for page in $(grep -L '^\.so ' man*/*); do
    messages=$(groff -mandoc -ww -Tutf8 -z "$page" 2>&1)
    [ -z "$messages" ] || { echo "$messages"; exit 1; }
done
for page in man3/*_*.3; do
    function=${page##*/} function=${function%.3}
    case $function in
    STATS_Publish*) library=libstatspublish.3 ;;
    *) library=libstats.3 ;;
    esac
    [ "$(cat "$page")" = ".so man3/$library" ] || { echo "$page does not lead to $library"; exit 1; }
    grep -Eq "^\.F[no] $function( |$)" "man3/$library" || { echo "$library does not name $function"; exit 1; }
done
