#!/bin/sh
# readme_test.sh SOURCE BUILD CC: the program in README.md builds with the command that stands there and prints the report
# that stands there, and the excerpt of a report is one that "decstats demo" prints.
set -eu
source=$1 build=$2 cc=$3
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

# fence NAME: the text of the code block behind the line "<!-- NAME -->".
fence() { awk -v mark="<!-- $1 -->" '$0 == mark {found = 1; next} found && /^```/ {if (open) exit; open = 1; next} open' "$source/README.md"; }

fence host.c >"$scratch/host.c"
fence host-output >"$scratch/expected"
fence excerpt >"$scratch/excerpt"
for file in host.c expected excerpt; do
    [ -s "$scratch/$file" ] || { echo "README.md has no $file"; exit 1; }
done

# The README's own command, with this build's folder and compiler in place of the usual ones.
command=$(fence host-build | sed "s|build/release|$build|g; s|^cc |$cc |; s|-Iinclude|-I$source/include|")
(cd "$scratch" && eval "$command" >actual)

# A second may begin between the record and the report.
sed -i 's/Last One: 1s ago/Last One: 0s ago/' "$scratch/actual"
diff "$scratch/expected" "$scratch/actual"

# The reports count back from now, so a second that begins while one is printed moves its times: look again then.
for attempt in 1 2 3; do
    { "$build/bin/decstats" demo; "$build/bin/decstats" demo --level debug; } >"$scratch/demo"
    missing=$(sed '/^ *\.\.\.$/d' "$scratch/excerpt" | while IFS= read -r line; do
        grep -qxF -- "$line" "$scratch/demo" || echo "$line"
    done)
    [ -n "$missing" ] || exit 0
done
echo "the demo does not print, in $attempt attempts:"
echo "$missing"
exit 1
