# SPDX-License-Identifier: MIT
# Fish completion for selector: commands, options and their values, URLs of the live system.

function __selector_live
    set -l program (commandline -opc)[1]
    $program complete $argv[1] -- (commandline -ct) 2>/dev/null
end

# Whether the command takes a further argument, or the word that is typed is a value for write.
function __selector_takes
    set -l words (commandline -opc)
    set -l count 0
    set -l skip 0
    for word in $words[3..-1]
        if test $skip -eq 1
            set skip 0
        else if contains -- $word -f -o --file --output --against --report --format --timeout --type --property --interval --count --until
            set skip 1
        else if not string match -q -- '-*' $word
            set count (math $count + 1)
        end
    end
    switch $words[2]
        case modules
            return 1
        case browse explain check apply complete
            test $count -lt 1
        case diff
            test $count -lt 2
        case write
            test (math $count % 2) -eq 0
        case '*'
            return 0
    end
end

# A label goes before a URL for watch alone.
function __selector_label
    string match -qr -- '^[[:alpha:]_][[:alnum:]_.-]*=' (commandline -ct)
end

set -l commands modules browse read write watch properties explain doctor check snapshot diff apply complete
complete -c selector -n "not __fish_seen_subcommand_from $commands" -f -a "$commands"
complete -c selector -n "not __fish_seen_subcommand_from $commands" -l version
complete -c selector -s h -l help
complete -c selector -s v -l verbose
complete -c selector -l format -x -a "table json csv"
complete -c selector -s j -l json
complete -c selector -l timeout -x
complete -c selector -l no-legend
complete -c selector -n "__fish_seen_subcommand_from modules browse read watch properties" -s q -l quiet
complete -c selector -n "__fish_seen_subcommand_from $commands; and not __selector_takes" -f
complete -c selector -n "__fish_seen_subcommand_from read write watch properties explain browse snapshot doctor complete" -f
complete -c selector -n "__fish_seen_subcommand_from watch" -a "(__selector_live url)"
complete -c selector -n "__fish_seen_subcommand_from read write properties explain; and __selector_takes; and not __selector_label" -a "(__selector_live url)"
complete -c selector -n "__fish_seen_subcommand_from browse snapshot; and __selector_takes" -a "(__selector_live place)"
complete -c selector -n "__fish_seen_subcommand_from doctor" -a "(__selector_live module)"
complete -c selector -n "__fish_seen_subcommand_from complete; and __selector_takes" -a "url place module"
complete -c selector -n "__fish_seen_subcommand_from modules" -l type -x -a "AnalogSelector DigitalSelector"
complete -c selector -n "__fish_seen_subcommand_from read write watch properties diff" -s f -l file -r -F
complete -c selector -n "__fish_seen_subcommand_from write" -s e -l escapes
complete -c selector -n "__fish_seen_subcommand_from properties explain" -l property -x -a "type unit readOnly minimum maximum description selectorType"
complete -c selector -n "__fish_seen_subcommand_from watch" -l interval -x
complete -c selector -n "__fish_seen_subcommand_from watch" -l count -x
complete -c selector -n "__fish_seen_subcommand_from watch" -l until -x
complete -c selector -n "__fish_seen_subcommand_from watch" -l timestamps
complete -c selector -n "__fish_seen_subcommand_from watch" -l changes-only
complete -c selector -n "__fish_seen_subcommand_from watch" -l plot
complete -c selector -n "__fish_seen_subcommand_from check" -l against -r -F
complete -c selector -n "__fish_seen_subcommand_from snapshot" -s o -l output -r -F
complete -c selector -n "__fish_seen_subcommand_from apply" -l dry-run
complete -c selector -n "__fish_seen_subcommand_from apply" -l verify
complete -c selector -n "__fish_seen_subcommand_from apply" -l rollback
complete -c selector -n "__fish_seen_subcommand_from doctor" -l clean
complete -c selector -n "__fish_seen_subcommand_from doctor" -l yes
complete -c selector -n "__fish_seen_subcommand_from doctor" -l report -r -F
complete -c selector -n "__fish_seen_subcommand_from doctor" -l with-values
