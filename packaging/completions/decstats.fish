# decstats completion for fish

# The number of arguments behind the command; options and their values do not count.
function __decstats_arguments
    set -l count -2 # decstats itself and the command
    set -l value no
    for word in (commandline --tokenize --cut-at-cursor --current-process)
        if test $value = yes
            set value no
        else if contains -- $word --library --level --component --at --format --field --decoder --output --directory --every --count --name --for --fault --after --from --to --rotate --speed --window --explain
            set value yes
        else if not string match --quiet -- '-?*' $word
            set count (math $count + 1)
        end
    end
    echo $count
end

function __decstats_needs_command
    test (__decstats_arguments) -eq -1
end

# __decstats_at COMMAND NUMBER: whether the cursor is at this argument of this command.
function __decstats_at
    __fish_seen_subcommand_from $argv[1]; and test (__decstats_arguments) -eq $argv[2]
end

function __decstats_components
    printf '%s\t%s\n' tdemux 'transport demux' vframer 'video framer' vdecoder 'video decoder' audio 'audio decoder' \
        metadata 'metadata decoder' buffering 'buffering controller' clock-recovery 'clock recovery' usage 'decoder usage'
end

function __decstats_scenarios
    decstats demo --list 2>/dev/null | string replace --regex ' +' \t
end

function __decstats_fields
    decstats describe --format json 2>/dev/null | string replace --filter --regex '^      "name": "(.*)",$' '$1'
end

function __decstats_names
    decstats list --format json 2>/dev/null | string replace --filter --regex '^      "decoder": "(.*)",$' '$1'
end

complete -c decstats -f
complete -c decstats -l library -r -F -d 'Load this report library'
complete -c decstats -s h -l help -d 'Print help and exit'
complete -c decstats -l version -d 'Print the version and exit'

complete -c decstats -n __decstats_needs_command -a show -d 'Show the records of a decoder as reports, JSON or metrics'
complete -c decstats -n __decstats_needs_command -a list -d 'List the live decoders and how they stand'
complete -c decstats -n __decstats_needs_command -a watch -d 'Show a decoder again and again'
complete -c decstats -n __decstats_needs_command -a diff -d 'Print what has changed between two sources'
complete -c decstats -n __decstats_needs_command -a capture -d 'Append snapshots of a decoder to a capture file'
complete -c decstats -n __decstats_needs_command -a history -d 'Tell what a capture file spans'
complete -c decstats -n __decstats_needs_command -a check -d 'Check a capture file for damage'
complete -c decstats -n __decstats_needs_command -a repair -d 'Write what can be read of a damaged capture file'
complete -c decstats -n __decstats_needs_command -a diagnose -d 'Say what is wrong with a decoder, and where'
complete -c decstats -n __decstats_needs_command -a describe -d 'Print what fields mean'
complete -c decstats -n __decstats_needs_command -a demo -d 'Print the reports of a sample'
complete -c decstats -n __decstats_needs_command -a print -d 'Print the report of a raw record'
complete -c decstats -n __decstats_needs_command -a sample -d 'Write the raw records of a sample'
complete -c decstats -n __decstats_needs_command -a serve -d 'Show decoders to browsers and to Prometheus'
complete -c decstats -n __decstats_needs_command -a simulate -d 'Publish a living sample'
complete -c decstats -n __decstats_needs_command -a version -d 'Print the versions of tool and library, or those in a file'

complete -c decstats -n '__fish_seen_subcommand_from show watch demo print' -l level -x -a 'default debug' -d 'How much the reports show'
complete -c decstats -n '__fish_seen_subcommand_from show print' -l at -x -a mtime -d 'The moment of the record'
complete -c decstats -n '__fish_seen_subcommand_from show watch demo' -l component -x -a '(__decstats_components)' -d 'Print this report only'
complete -c decstats -n '__fish_seen_subcommand_from show' -l format -x -a 'text json ndjson openmetrics prometheus' -d 'The form'
complete -c decstats -n '__fish_seen_subcommand_from show' -l raw -d 'JSON of all bytes as they stand'
complete -c decstats -n '__fish_seen_subcommand_from show watch' -l field -x -a '(__decstats_fields)' -d 'Show this field only'
complete -c decstats -n '__fish_seen_subcommand_from show' -l decoder -x -d 'Name of the decoder'
complete -c decstats -n '__fish_seen_subcommand_from show' -l output -r -F -d 'Write this file'
complete -c decstats -n '__fish_seen_subcommand_from show list watch diff diagnose capture serve simulate' -l directory -x -a '(__fish_complete_directories)' -d 'Where live decoders are'
complete -c decstats -n '__decstats_at show 0; or __decstats_at watch 0; or __decstats_at diagnose 0; or __decstats_at capture 0; or __decstats_at diff 0; or __decstats_at diff 1' -F -a '(__decstats_names)'
complete -c decstats -n '__fish_seen_subcommand_from list' -l format -x -a 'text json' -d 'The form'
complete -c decstats -n '__fish_seen_subcommand_from diagnose' -l window -x -d 'How far the moments lie apart'
complete -c decstats -n '__fish_seen_subcommand_from diagnose' -l at -x -a mtime -d 'The moment'
complete -c decstats -n '__fish_seen_subcommand_from show watch capture diagnose' -l from -x -d 'First moment of a capture file'
complete -c decstats -n '__fish_seen_subcommand_from show watch capture diagnose' -l to -x -d 'Last moment of a capture file'
complete -c decstats -n '__fish_seen_subcommand_from diagnose' -l format -x -a 'text json openmetrics prometheus' -d 'The form'
complete -c decstats -n '__fish_seen_subcommand_from diagnose' -l explain -x -d 'Explain a finding'
complete -c decstats -n '__fish_seen_subcommand_from diff' -l format -x -a 'text json ndjson' -d 'The form'
complete -c decstats -n '__fish_seen_subcommand_from diff' -l from -x -a mtime -d 'Moment of the old one'
complete -c decstats -n '__fish_seen_subcommand_from diff' -l to -x -a mtime -d 'Moment of the new one'
complete -c decstats -n '__fish_seen_subcommand_from watch capture' -l every -x -d 'How often'
complete -c decstats -n '__fish_seen_subcommand_from watch' -l speed -x -d 'Of playing back'
complete -c decstats -n '__fish_seen_subcommand_from watch' -l count -x -d 'How many times'
complete -c decstats -n '__fish_seen_subcommand_from capture' -l rotate -x -a day -d 'When a new file begins'
complete -c decstats -n '__decstats_at capture 1; or __decstats_at history 0; or __decstats_at check 0; or __decstats_at repair 0; or __decstats_at repair 1' -F
complete -c decstats -n '__fish_seen_subcommand_from serve' -l listen -x -d 'Where to listen'
complete -c decstats -n '__fish_seen_subcommand_from serve' -l captures -x -a '(__fish_complete_directories)' -d 'Where captures are written'
complete -c decstats -n '__fish_seen_subcommand_from serve' -l host -x -d 'Answer under this name, too'
complete -c decstats -n '__fish_seen_subcommand_from serve' -l tls-cert -r -F -d 'Serve with this certificate'
complete -c decstats -n '__fish_seen_subcommand_from serve' -l tls-key -r -F -d 'Its private key'
complete -c decstats -n '__fish_seen_subcommand_from serve' -l token-file -r -F -d 'Answer those who show this token'
complete -c decstats -n '__fish_seen_subcommand_from simulate' -l name -x -d 'Name of the decoder'
complete -c decstats -n '__fish_seen_subcommand_from simulate capture' -l for -x -d 'How long'
complete -c decstats -n '__fish_seen_subcommand_from simulate' -l fault -x -a '(decstats simulate --list-faults | string replace --regex " .*" "")' -d 'Let this go wrong'
complete -c decstats -n '__fish_seen_subcommand_from simulate' -l after -x -d 'When the fault begins'
complete -c decstats -n '__decstats_at simulate 0' -l list-faults -d 'List the faults'
complete -c decstats -n '__decstats_at simulate 0; and not __fish_contains_opt list-faults' -a '(__decstats_scenarios)'
complete -c decstats -n '__fish_seen_subcommand_from describe' -l format -x -a 'text json' -d 'The form'
complete -c decstats -n '__fish_seen_subcommand_from describe' -l schema -d 'Print the JSON Schema'
complete -c decstats -n '__fish_seen_subcommand_from describe' -a '(__decstats_components)'
complete -c decstats -n '__decstats_at demo 0' -l list -d 'List the scenarios'
complete -c decstats -n '__decstats_at demo 0; and not __fish_contains_opt list' -a '(__decstats_scenarios)'
complete -c decstats -n '__decstats_at print 0' -a '(__decstats_components)'
complete -c decstats -n '__decstats_at print 1' -F
complete -c decstats -n '__decstats_at sample 0' -a '(__decstats_scenarios)'
complete -c decstats -n '__decstats_at sample 1' -a '(__fish_complete_directories)'
complete -c decstats -n '__decstats_at version 0' -F
