#!/bin/bash
# completions_test.bash PREFIX: what the completion offers in bash, and that zsh and fish, where they are installed, accept
# theirs.
set -u
prefix=$1
status=0
PATH=$prefix/bin:$PATH
source "$prefix/share/bash-completion/completions/decstats"

# Outside a completion there is nothing that compopt could change: what it would, is noted.
compopt() { asked="<$2>"; }

scenarios='live-srt-1080i rtp-fec-2160p trouble resolving idle extreme'
components='tdemux vframer vdecoder audio metadata buffering clock-recovery usage'

# offers EXPECTED WORD...: completing the last word offers EXPECTED; <default> is files, <dirnames> folders.
offers()
{
    local expected=$1
    shift
    COMP_WORDS=(decstats "$@")
    COMP_CWORD=$#
    COMPREPLY=()
    asked=''
    _decstats decstats "${@: -1}" "${COMP_WORDS[-2]}"
    local actual="${COMPREPLY[*]}$asked"
    if [[ $actual != "$expected" ]]; then
        echo "decstats $*| offers: $actual"
        echo "              expected: $expected"
        status=1
    fi
}

offers 'show list watch diff diagnose capture history check repair describe demo print sample serve simulate version' ''
offers 'diff diagnose describe demo' d
offers '' x
offers '--library --help --version' -
offers '<default>' --library ''
offers '<default>' --library = ''
offers 'show list watch diff diagnose capture history check repair describe demo print sample serve simulate version' --library libstats.so ''
offers 'show list watch diff diagnose capture history check repair describe demo print sample serve simulate version' --library = libstats.so ''

offers "$scenarios" demo ''
offers "$scenarios" --library libstats.so demo ''
offers 'rtp-fec-2160p resolving' demo r
offers '' demo idle ''
offers '' demo --list ''
offers '--library --help --version --level --component --list' demo -
offers '--library --help --version --level --component' demo idle -
offers '--level' demo idle --le
offers 'default debug' demo --level ''
offers 'default debug' demo --level =
offers 'default debug' demo --level = de
offers "$scenarios" demo --level debug ''
offers "$scenarios" demo --level = debug ''
offers "$components" demo --component ''
offers 'vframer vdecoder' demo --component v
offers "$components" demo idle --component audio --component ''
offers '<default>' demo --library ''

offers "$components" print ''
offers 'clock-recovery' print c
offers '<default>' print usage ''
offers '<default>' print --level debug usage rec
offers 'default debug' print usage file.rec --level ''
offers '--library --help --version --level --at' print usage file.rec --
offers 'mtime' print usage file.rec --at ''
offers '<default>' print --at mtime usage ''
offers '' print usage file.rec ''

offers '<default>' show ''
offers '' show idle ''
offers '--library --help --version --directory --component --level --format --raw --at --from --to --field --decoder --output' show idle -
offers 'text json ndjson openmetrics prometheus' show idle --format ''
offers 'json' show --format j
offers '' show idle --from ''
offers "$components" show idle --component ''
offers '<default>' show idle --output ''
offers 'tdemux.srt.rtt' show idle --field tdemux.srt.rt
offers "$components" describe ''

# Live decoders by name, and files where no name begins like that.
DECSTATS_DIRECTORY=$(mktemp -d)
export DECSTATS_DIRECTORY
for name in alpha beta; do : >"$DECSTATS_DIRECTORY/$name.decstats"; done
for command in show watch diff 'diff alpha'; do
    offers 'alpha beta<default>' $command ''
    offers 'beta<default>' $command b
    offers '<default>' $command ./
done
rm -r "$DECSTATS_DIRECTORY"
offers '' watch alpha ''
offers '' list ''
offers '--library --help --version --directory --format' list -
offers 'text json' list --format ''
offers '<dirnames>' list --directory ''
offers '--library --help --version --directory --every --count --field --component --level --speed --from --to' watch -
offers '' watch --every ''
offers '' watch --to ''
offers '--library --help --version --directory --every --for --rotate --from --to' capture -
offers day capture --rotate ''
offers '' capture --from ''
offers '--library --help --version --from --to --directory --format' diff -
offers 'text json ndjson' diff alpha beta --format ''
offers 'mtime' diff alpha --from ''
offers "$scenarios" simulate ''
offers '' simulate idle ''
offers 'srt-loss srt-latency-low' simulate live-srt-1080i --fault srt-l
offers '--library --help --version --name --directory --for --fault --after --list-faults' simulate -
offers '--library --help --version --name --directory --for --fault --after' simulate idle -
offers 'audio' describe usage a
offers '--library --help --version --format --schema' describe -
offers 'text json' describe --format ''

offers "$scenarios" sample ''
offers '<dirnames>' sample idle ''
offers '' sample idle folder ''
offers '--library --help --version' sample --

offers '<default>' version ''
offers '' version file ''

# The tool knows these components and no other, and the other shells are offered the same.
known=$(decstats demo --help | sed -n '/^Components:/,$s/^  \([a-z-]*\) .*/\1/p' | paste -sd ' ')
[[ $known == "$components" ]] || { echo "decstats has the components $known"; status=1; }
zsh=$prefix/share/zsh/site-functions/_decstats
fish=$prefix/share/fish/vendor_completions.d/decstats.fish
offered=$(sed -n "/components=(/,/)/s/^ *'\([a-z-]*\):.*/\1/p" "$zsh" | paste -sd ' ')
[[ $offered == "$components" ]] || { echo "in zsh the components are $offered"; status=1; }
offered=$(sed -n "/printf/,/^end/p" "$fish" | sed "s/'[^']*'//g" | grep -ow '[a-z-]*' | grep -vx -e printf -e end | paste -sd ' ')
[[ $offered == "$components" ]] || { echo "in fish the components are $offered"; status=1; }

if command -v zsh >/dev/null; then zsh -n "$zsh" || status=1; fi
if command -v fish >/dev/null; then
    # fish_offers EXPECTED LINE: completing the line offers EXPECTED, without the descriptions.
    fish_offers()
    {
        local actual
        actual=$(fish --no-config -c "source '$fish'; complete -C '$2'" | cut -f 1 | sort | paste -sd ' ')
        [[ $actual == "$1" ]] || { echo "fish: '$2' offers: $actual"; echo "expected: $1"; status=1; }
    }
    fish_offers 'capture check demo describe diff history list print repair sample show simulate version watch' 'decstats '
    fish_offers "$(tr ' ' '\n' <<<"$scenarios" | sort | paste -sd ' ')" 'decstats demo '
    fish_offers "$(tr ' ' '\n' <<<"$components" | sort | paste -sd ' ')" 'decstats print --level debug '
    fish_offers 'debug default' 'decstats demo idle --level '
fi
exit $status
