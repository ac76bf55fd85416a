# SPDX-License-Identifier: MIT
# Bash completion for selector: commands, options and the values of options.

_selector()
{
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
    local command=${COMP_WORDS[1]} words
    COMPREPLY=()

    if ((COMP_CWORD == 1)); then
        mapfile -t COMPREPLY < <(compgen -W "modules browse read write watch properties explain check snapshot diff apply --help --version" \
            -- "$current")
        return
    fi
    case $previous in
    --format)
        mapfile -t COMPREPLY < <(compgen -W "table json csv" -- "$current")
        return
        ;;
    --type)
        mapfile -t COMPREPLY < <(compgen -W "AnalogSelector DigitalSelector" -- "$current")
        return
        ;;
    -f | --file | -o | --output | --against)
        compopt -o filenames
        mapfile -t COMPREPLY < <(compgen -f -- "$current")
        return
        ;;
    --property)
        mapfile -t COMPREPLY < <(compgen -W "type unit readOnly minimum maximum description selectorType" \
            -- "$current")
        return
        ;;
    --interval | --count | --timeout | --until) return ;;
    esac

    words="--format --json --timeout --verbose --help"
    case $command in
    modules) words+=" --type" ;;
    read | write) words+=" --file" ;;
    watch) words+=" --file --interval --count --until --timestamps --changes-only --plot" ;;
    properties) words+=" --file --property" ;;
    explain) words+=" --property" ;;
    check) words+=" --against" ;;
    snapshot) words+=" --output" ;;
    diff) words+=" --file" ;;
    apply) words+=" --dry-run --verify --rollback" ;;
    esac
    if [[ $current == -* ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
    fi
}

complete -F _selector selector
