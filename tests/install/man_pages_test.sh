#!/bin/sh
# man_pages_test.sh PREFIX: groff renders the installed manual pages without a warning.
set -eu
command -v groff >/dev/null || { echo "groff is missing"; exit 77; }
for page in "$1"/share/man/man?/*.[135]; do
    messages=$(groff -mandoc -ww -Tutf8 -z "$page" 2>&1)
    [ -z "$messages" ] || { echo "$messages"; exit 1; }
done
