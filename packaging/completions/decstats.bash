# decstats completion for bash

# _decstats_names TOOL: the names of the live decoders.
_decstats_names()
{
    "$1" list --format json 2>/dev/null | sed -n 's/^      "decoder": "\(.*\)",$/\1/p'
}

_decstats()
{
    local components='tdemux vframer vdecoder audio metadata buffering clock-recovery usage'
    local current=${COMP_WORDS[COMP_CWORD]} option='' command='' arguments=0 list='' i

    # The "=" of --level=debug is a word of its own.
    [[ $current == '=' ]] && current=''

    # What stands before the cursor: the command, the number of its arguments, and an option that waits for its value.
    for ((i = 1; i < COMP_CWORD; ++i)); do
        case ${COMP_WORDS[i]} in
        --library | --level | --component | --at | --format | --field | --decoder | --output | --directory | --every | --count | --name | --for | --fault | --after | --from | --to | --rotate | --speed | --window | --explain)
            option=${COMP_WORDS[i]}
            [[ ${COMP_WORDS[i + 1]} == '=' ]] && ((++i))
            ((++i < COMP_CWORD)) && option=''
            ;;
        --list | --list-faults) list=yes ;;
        -?*) ;;
        *) if [[ $command ]]; then ((++arguments)); else command=${COMP_WORDS[i]}; fi ;;
        esac
    done

    COMPREPLY=()
    local words='' files=''
    case $option:$command:$arguments in
    --library:* | --output:* | --tls-cert:* | --tls-key:* | --token-file:*) files=default ;;
    --level:*) words='default debug' ;;
    --rotate:*) words=day ;;
    --at:* | --from:diff:* | --to:diff:*) words=mtime ;;
    --directory:* | --captures:*) files=dirnames ;;
    --format:describe:* | --format:list:*) words='text json' ;;
    --format:diagnose:*) words='text json openmetrics prometheus' ;;
    --format:diff:*) words='text json ndjson' ;;
    --format:*) words='text json ndjson openmetrics prometheus' ;;
    --field:*) words=$("${COMP_WORDS[0]}" describe --format json 2>/dev/null | sed -n 's/^      "name": "\(.*\)",$/\1/p') ;;
    --component:*) words=$components ;;
    --fault:*) words=$("${COMP_WORDS[0]}" simulate --list-faults 2>/dev/null | cut -d ' ' -f 1) ;;
    ::*) words='show list watch diff diagnose capture history check repair describe demo print sample serve simulate version' ;;
    :demo:0 | :simulate:0) [[ $list ]] || words=$("${COMP_WORDS[0]}" demo --list 2>/dev/null | cut -d ' ' -f 1) ;;
    :sample:0) words=$("${COMP_WORDS[0]}" demo --list 2>/dev/null | cut -d ' ' -f 1) ;;
    :sample:1) files=dirnames ;;
    :print:0) words=$components ;;
    :describe:*) words=$components ;;
    :print:1 | :version:0 | :capture:1 | :history:0 | :check:0 | :repair:[01]) files=default ;;
    :serve:*) files=default words=$(_decstats_names "${COMP_WORDS[0]}") ;;
    :show:0 | :watch:0 | :diagnose:0 | :diff:[01] | :capture:0) files=default words=$(_decstats_names "${COMP_WORDS[0]}") ;;
    esac

    if [[ ! $option && $current == -* ]]; then
        files=''
        words='--library --help --version'
        case $command in
        show) words+=' --directory --component --level --format --raw --at --from --to --field --decoder --output' ;;
        list) words+=' --directory --format' ;;
        watch) words+=' --directory --every --count --field --component --level --speed --from --to' ;;
        capture) words+=' --directory --every --for --rotate --from --to' ;;
        diff) words+=' --from --to --directory --format' ;;
        diagnose) words+=' --directory --window --at --from --to --format --explain' ;;
        serve) words+=' --listen --directory --captures --host --tls-cert --tls-key --token-file' ;;
        simulate) words+=' --name --directory --for --fault --after'; ((arguments)) || words+=' --list-faults' ;;
        describe) words+=' --format --schema' ;;
        demo) words+=' --level --component'; ((arguments)) || words+=' --list' ;;
        print) words+=' --level --at' ;;
        esac
    fi

    [[ ! $files ]] || compopt -o "$files" # readline completes file names itself, with their quotes and tildes
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
}

complete -F _decstats decstats
