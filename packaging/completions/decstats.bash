# decstats completion for bash

_decstats()
{
    local components='tdemux vframer vdecoder audio metadata buffering clock-recovery usage'
    local current=${COMP_WORDS[COMP_CWORD]} option='' command='' arguments=0 list='' i

    # The "=" of --level=debug is a word of its own.
    [[ $current == '=' ]] && current=''

    # What stands before the cursor: the command, the number of its arguments, and an option that waits for its value.
    for ((i = 1; i < COMP_CWORD; ++i)); do
        case ${COMP_WORDS[i]} in
        --library | --level | --component | --at | --format | --field | --output)
            option=${COMP_WORDS[i]}
            [[ ${COMP_WORDS[i + 1]} == '=' ]] && ((++i))
            ((++i < COMP_CWORD)) && option=''
            ;;
        --list) list=yes ;;
        -?*) ;;
        *) if [[ $command ]]; then ((++arguments)); else command=${COMP_WORDS[i]}; fi ;;
        esac
    done

    COMPREPLY=()
    local words='' files=''
    case $option:$command:$arguments in
    --library:* | --output:*) files=default ;;
    --level:*) words='default debug' ;;
    --at:*) words=mtime ;;
    --format:describe:*) words='text json' ;;
    --format:*) words='text json ndjson openmetrics prometheus' ;;
    --field:*) words=$("${COMP_WORDS[0]}" describe --format json 2>/dev/null | sed -n 's/^      "name": "\(.*\)",$/\1/p') ;;
    --component:*) words=$components ;;
    ::*) words='show describe demo print sample version' ;;
    :demo:0) [[ $list ]] || words=$("${COMP_WORDS[0]}" demo --list 2>/dev/null | cut -d ' ' -f 1) ;;
    :sample:0) words=$("${COMP_WORDS[0]}" demo --list 2>/dev/null | cut -d ' ' -f 1) ;;
    :sample:1) files=dirnames ;;
    :print:0) words=$components ;;
    :describe:*) words=$components ;;
    :print:1 | :version:0 | :show:0) files=default ;;
    esac

    if [[ ! $option && $current == -* ]]; then
        files=''
        words='--library --help --version'
        case $command in
        show) words+=' --component --level --format --raw --at --field --output' ;;
        describe) words+=' --format --schema' ;;
        demo) words+=' --level --component'; ((arguments)) || words+=' --list' ;;
        print) words+=' --level --at' ;;
        esac
    fi

    if [[ $files ]]; then
        compopt -o "$files" # readline completes file names itself, with their quotes and tildes
    else
        mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
    fi
}

complete -F _decstats decstats
