#!/bin/sh
# rules_test.sh RULES TESTS SCRATCH: promtool has nothing to say against the configurations and rules in the folder RULES, and every
# case of the folder TESTS comes out as it says. Exits with 77 without promtool, which the complete run installs.
set -eu
command -v promtool >/dev/null || { echo "promtool, of the package prometheus, is missing"; exit 77; }
rm -rf "$3"
mkdir -p "$3"
cp "$1"/*.yml "$2"/*.test.yml "$3"
cd "$3"
for file in unit site fleet; do promtool check config --syntax-only "$file.yml"; done
promtool check rules --lint=all --lint-fatal ./*.rules.yml
promtool test rules ./*.test.yml
