# decstats completion for fish

# The number of arguments behind the command; options and their values do not count.
function __decstats_arguments
    set -l count -2 # decstats itself and the command
    set -l value no
    for word in (commandline --tokenize --cut-at-cursor --current-process)
        if test $value = yes
            set value no
        else if contains -- $word --library --level --component --at --format --field --output
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

complete -c decstats -f
complete -c decstats -l library -r -F -d 'Load this report library'
complete -c decstats -s h -l help -d 'Print help and exit'
complete -c decstats -l version -d 'Print the version and exit'

complete -c decstats -n __decstats_needs_command -a show -d 'Show the records of a decoder as reports, JSON or metrics'
complete -c decstats -n __decstats_needs_command -a describe -d 'Print what fields mean'
complete -c decstats -n __decstats_needs_command -a demo -d 'Print the reports of a sample'
complete -c decstats -n __decstats_needs_command -a print -d 'Print the report of a raw record'
complete -c decstats -n __decstats_needs_command -a sample -d 'Write the raw records of a sample'
complete -c decstats -n __decstats_needs_command -a version -d 'Print the versions of tool and library, or those in a file'

complete -c decstats -n '__fish_seen_subcommand_from show demo print' -l level -x -a 'default debug' -d 'How much the reports show'
complete -c decstats -n '__fish_seen_subcommand_from show print' -l at -x -a mtime -d 'The moment of the record'
complete -c decstats -n '__fish_seen_subcommand_from show demo' -l component -x -a '(__decstats_components)' -d 'Print this report only'
complete -c decstats -n '__fish_seen_subcommand_from show' -l format -x -a 'text json ndjson openmetrics prometheus' -d 'The form'
complete -c decstats -n '__fish_seen_subcommand_from show' -l raw -d 'JSON of all bytes as they stand'
complete -c decstats -n '__fish_seen_subcommand_from show' -l field -x -a '(__decstats_fields)' -d 'Show this field only'
complete -c decstats -n '__fish_seen_subcommand_from show' -l output -r -F -d 'Write this file'
complete -c decstats -n '__decstats_at show 0' -F
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
