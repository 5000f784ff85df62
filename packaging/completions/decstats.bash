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
        --library | --level | --component | --at)
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
    --library:*) files=default ;;
    --level:*) words='default debug' ;;
    --at:*) words=mtime ;;
    --component:*) words=$components ;;
    ::*) words='demo print sample version' ;;
    :demo:0) [[ $list ]] || words=$("${COMP_WORDS[0]}" demo --list 2>/dev/null | cut -d ' ' -f 1) ;;
    :sample:0) words=$("${COMP_WORDS[0]}" demo --list 2>/dev/null | cut -d ' ' -f 1) ;;
    :sample:1) files=dirnames ;;
    :print:0) words=$components ;;
    :print:1 | :version:0) files=default ;;
    esac

    if [[ ! $option && $current == -* ]]; then
        files=''
        words='--library --help --version'
        case $command in
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
