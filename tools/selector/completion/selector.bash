# SPDX-License-Identifier: MIT
# Bash completion for selector: commands, options and their values, URLs of the live system.

# Selector URLs and places of the live system; silent when it does not answer. Readline takes only
# what follows the last : or = of the word, which its own list of word breaks decides.
_selector_live()
{
    local line=${COMP_LINE:0:COMP_POINT} word strip=
    word=${line##*[[:space:]]}
    [[ $COMP_WORDBREAKS != *:* ]] || strip=${word%"${word##*[:=]}"}
    mapfile -t COMPREPLY < <("${COMP_WORDS[0]}" complete "$1" "$word" 2>/dev/null)
    [[ ${COMPREPLY[*]} != */ && ${COMPREPLY[*]} != */\ * ]] || compopt -o nospace
    COMPREPLY=("${COMPREPLY[@]#"$strip"}")
}

_selector()
{
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
    local command=${COMP_WORDS[1]} words
    COMPREPLY=()

    if ((COMP_CWORD == 1)); then
        mapfile -t COMPREPLY < <(compgen -W "modules browse read write watch properties explain doctor check snapshot diff apply complete --help --version" \
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
    -f | --file | -o | --output | --against | --report)
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

    words="--format --json --timeout --no-legend --verbose --help"
    case $command in
    modules) words+=" --type --quiet" ;;
    browse) words+=" --quiet" ;;
    read) words+=" --file --quiet" ;;
    write) words+=" --file" ;;
    watch) words+=" --file --interval --count --until --timestamps --changes-only --plot --quiet" ;;
    properties) words+=" --file --property --quiet" ;;
    explain) words+=" --property" ;;
    doctor) words+=" --clean --yes --report --with-values" ;;
    check) words+=" --against" ;;
    snapshot) words+=" --output" ;;
    diff) words+=" --file" ;;
    apply) words+=" --dry-run --verify --rollback" ;;
    esac
    if [[ $current == -* ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
        return
    fi
    case $command in
    read | write | watch | properties | explain) _selector_live url ;;
    browse | snapshot | doctor) _selector_live place ;;
    check | apply | diff)
        compopt -o filenames
        mapfile -t COMPREPLY < <(compgen -f -- "$current")
        ;;
    esac
}

complete -F _selector selector
