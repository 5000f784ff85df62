#!/bin/sh
# complete_test.sh DESCRIPTIONS INCLUDE_TESTS MAP HEADER: the stored descriptions have every record, field and enumerator that
# the checks of the headers list, with its size, offset and value, and every function that MAP and HEADER export.
set -eu
descriptions=$1 lists=$2 map=$3 header=$4
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
status=0

awk -F "'" '
    function field(key,    text) { text = $0; return sub(".* " key "=" q, "", text) ? substr(text, 1, index(text, q) - 1) : "" }
    BEGIN                         { q = sprintf("%c", 39) }
    /^    <class-decl name=.tag/  { id = field("id"); tag[id] = $2; size[id] = field("size-in-bits") / 8 }
    /^    <\/class-decl>/         { id = "" }
    /^      <data-member /        { offset = field("layout-offset-in-bits") / 8 }
    /^        <var-decl / && id   { fields[id] = fields[id] "\n" $2 ", " offset }
    /<typedef-decl /              { name[field("type-id")] = $2 }
    /<enumerator /                { print "VALUE(" $2 ", " $4 ")" }
    /<elf-symbol /                 { print "EXPORT(" $2 ")" }
    END {
        for (id in tag)
        {
            record = id in name ? name[id] : substr(tag[id], 4)
            print "RECORD(" record ", " size[id] ")"
            count = split(fields[id], entries, "\n")
            for (i = 2; i <= count; i++) print "FIELD(" record ", " entries[i] ")"
        }
    }' "$descriptions"/libstats.abi "$descriptions"/libhostsvc.abi "$descriptions"/headers.abi >"$scratch/described"

# Values that do not fit into an int are written in hexadecimal, so the descriptions, in decimal, only show the names.
{
    sed -n 's/^ *\(\(RECORD\|FIELD\|VALUE\)(.*)\)$/\1/p' "$lists"/record_layout.inc "$lists"/enumerators.inc
    sed -n 's/^UNSIGNED_VALUE(\(.*\), .*)$/VALUE(\1, /p' "$lists"/enumerators.inc
    sed -n '/global:/,/local:/s/^ *\([A-Za-z_]*\);$/EXPORT(\1)/p' "$map"
    sed -n 's/^HOSTSVC_API [^(]*[ *]\([A-Za-z_]*\)(.*/EXPORT(\1)/p' "$header"
} >"$scratch/expected"

missing=$(awk 'NR == FNR { known[$0] = 1; sub(/[^ ]*$/, ""); known[$0] = 1; next } !($0 in known)' "$scratch/described" "$scratch/expected")
[ -z "$missing" ] || { echo "not described:"; echo "$missing"; status=1; }
for kind in RECORD FIELD VALUE EXPORT; do
    echo "$(grep -c "^$kind" "$scratch/expected") $kind"
done
exit $status
