# SPDX-License-Identifier: MIT
# Fish completion for selector: commands, options and their values, URLs of the live system.

function __selector_live
    set -l program (commandline -opc)[1]
    $program complete $argv[1] -- (commandline -ct) 2>/dev/null
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
complete -c selector -n "__fish_seen_subcommand_from read write watch properties explain" -f -a "(__selector_live url)"
complete -c selector -n "__fish_seen_subcommand_from browse snapshot doctor" -f -a "(__selector_live place)"
complete -c selector -n "__fish_seen_subcommand_from modules" -l type -x -a "AnalogSelector DigitalSelector"
complete -c selector -n "__fish_seen_subcommand_from read write watch properties diff" -s f -l file -r -F
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
