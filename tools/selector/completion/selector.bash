# SPDX-License-Identifier: MIT
# Bash completion for selector, which knows by itself what may stand where.

_selector()
{
    local line=${COMP_LINE:0:COMP_POINT} words word strip=
    read -ra words <<<"$line"
    [[ $line != *[[:space:]] ]] || words+=("")
    word=${words[-1]}
    # Readline takes only what follows the last : or = of the word, which its list of word breaks decides.
    [[ $COMP_WORDBREAKS != *:* ]] || strip=${word%"${word##*[:=]}"}
    [[ $word != - ]] || words[-1]=-- # long options are enough
    mapfile -t COMPREPLY < <("${COMP_WORDS[0]}" complete line -- "${words[@]:1}" 2>/dev/null)
    if [[ ${COMPREPLY[*]} == :files ]]; then
        compopt -o filenames
        mapfile -t COMPREPLY < <(compgen -f -- "${COMP_WORDS[COMP_CWORD]}")
        return
    fi
    [[ ${COMPREPLY[*]} != */ && ${COMPREPLY[*]} != */\ * ]] || compopt -o nospace
    COMPREPLY=("${COMPREPLY[@]#"$strip"}")
    # The name of a module is whatever somebody registered.
    ((${#COMPREPLY[@]} == 0)) || mapfile -t COMPREPLY < <(printf '%q\n' "${COMPREPLY[@]}")
}

complete -F _selector selector
