#!/bin/sh
# stack_test.sh LIMIT MAP OBJECT... -- OBJECT...: prints the most stack that each function exported by MAP can take, and fails
# where it is LIMIT bytes or more. The first objects are the report library's, the others the services'; each was compiled
# with -fcallgraph-info=su, which leaves a call graph with the stack of every function beside it.
#
# The most is the sum along the deepest chain of calls, return addresses included. What the C library takes inside its own
# functions is not.
set -eu
limit=$1 map=$2
shift 2
graphs() { for object in "$@"; do [ "$object" = -- ] && echo separator=1 || echo "${object%.o}.ci"; done; }
functions=$(sed -n '/global:/,/local:/s/^ *\([A-Za-z_]*\);$/\1/p' "$map")
[ -n "$functions" ] || { echo "$map names no function" >&2; exit 1; }

# shellcheck disable=SC2046 # a list of paths, of which a build has none with blanks
exec awk -v limit="$limit" -v functions="$functions" '
function quoted(key,    text)
{
    text = $0
    if (!sub(".* " key ": \"", "", text)) return ""
    sub(/".*/, "", text)
    return text
}

# The name of a function in its source; the labels of the graphs lack it for functions with "..." as the last parameter.
function plain(title,    rest, found)
{
    sub(/.*:/, "", title)
    if (title !~ /^_Z/) return title
    rest = substr(title, match(title, /[0-9]/))
    while (match(rest, /^[0-9]+/))
    {
        found = substr(rest, RLENGTH + 1, substr(rest, 1, RLENGTH))
        rest = substr(rest, RLENGTH + 1 + length(found))
    }
    return found
}

function refuse(text)
{
    if (!(text in refused)) print text > "/dev/stderr"
    refused[text] = 1
    failed = 1
}

# A function may be called by the name of an alias that the compiler made for calls within one object.
function target_of(title)
{
    if (title in size) return title
    sub(/\.localalias(\.[0-9]+)?$/, "", title)
    if (title in size) return title
    if (match(title, /.*:/) && substr(title, RLENGTH + 1) in size) return substr(title, RLENGTH + 1)
    return title
}

# The most stack of a function and all that it calls; within = 0 counts the services as the C library is counted.
function deepest(title, within,    i, callee, most, below, key)
{
    key = title SUBSEP within
    if (key in known) return known[key]
    if (key in open) { refuse("a chain of calls that returns to " name[title]); return 0 }
    open[key] = 1
    if (how[title] !~ /^(static|dynamic,bounded)$/) refuse(name[title] ": its stack has no bound: " how[title])
    most = 0
    for (i = 1; i <= calls[title]; i++)
    {
        callee = target_of(called[title, i])
        if (callee == "__indirect_call") { refuse(name[title] ": calls through a pointer"); continue }
        if (!(callee in size))
        {
            if (!(callee in declared)) refuse(name[title] ": calls " callee ", which no graph has")
            outside[callee] = 1
            continue
        }
        if (service[callee] && !within) continue
        below = deepest(callee, within)
        if (below > most) { most = below; next_of[key] = callee }
    }
    delete open[key]
    return known[key] = size[title] + most
}

function chain(title, within,    text)
{
    text = ""
    while ((title SUBSEP within) in next_of)
    {
        title = next_of[title, within]
        text = text " > " name[title]
    }
    return text
}

/^node: / && match($0, /[0-9]+ bytes \([a-z,]*\)/) {
    stack = substr($0, RSTART, RLENGTH)
    title = quoted("title")
    size[title] = stack + 0
    sub(/.*\(/, "", stack)
    sub(/\)/, "", stack)
    how[title] = stack
    name[title] = plain(title)
    service[title] = separator + 0
    next
}
/^node: / { declared[quoted("title")] = 1 }
/^edge: / {
    title = quoted("sourcename")
    callee = quoted("targetname")
    if (!((title, callee) in seen)) called[title, ++calls[title]] = callee
    seen[title, callee] = 1
}

END {
    printf "%-28s %9s %14s  %s\n", "Stack [bytes]", "libstats", "with libhostsvc", "deepest chain"
    count = split(functions, list, "\n")
    for (i = 1; i <= count; i++)
    {
        title = list[i]
        if (!(title in size)) { refuse(title ": in no graph"); continue }
        all = deepest(title, 1)
        printf "%-28s %9d %15d %s\n", title, deepest(title, 0), all, chain(title, 1)
        if (all >= limit) refuse(title ": " all " bytes, but the limit is " limit)
    }
    text = ""
    for (title in outside) text = text " " title
    print "not included, the C library in:" text
    exit failed
}' $(graphs "$@")
