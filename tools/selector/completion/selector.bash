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

# How many arguments stand before the word that is typed; options and their values are none.
_selector_arguments()
{
    local line=${COMP_LINE:0:COMP_POINT} word words skip='' count=0
    read -ra words <<<"${line%"${line##*[[:space:]]}"}"
    for word in "${words[@]:2}"; do
        if [[ $skip ]]; then
            skip=
        elif [[ $word == -* ]]; then
            [[ $word != @(-f|-o|--file|--output|--against|--report|--format|--timeout|--type|--property|--interval|--count|--until) ]] ||
                skip=1
        else
            ((++count))
        fi
    done
    echo "$count"
}

_selector()
{
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
    local command=${COMP_WORDS[1]} words count labelled='^[[:alpha:]_][[:alnum:]_.-]*='
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
    write) words+=" --escapes --file" ;;
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
    count=$(_selector_arguments)
    case $command:$count in
    modules:* | browse:[1-9]* | explain:[1-9]* | check:[1-9]* | apply:[1-9]* | diff:[2-9]*) return ;;
    write:*[13579]) return ;; # a value
    complete:0)
        mapfile -t COMPREPLY < <(compgen -W "url place module" -- "$current")
        return
        ;;
    esac
    case $command in
    watch) _selector_live url ;;
    read | write | properties | explain) [[ ${COMP_LINE##*[[:space:]]} =~ $labelled ]] || _selector_live url ;;
    browse | snapshot) _selector_live place ;;
    doctor) _selector_live module ;;
    check | apply | diff)
        compopt -o filenames
        mapfile -t COMPREPLY < <(compgen -f -- "$current")
        ;;
    esac
}

complete -F _selector selector
