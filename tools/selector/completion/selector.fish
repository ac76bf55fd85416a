# SPDX-License-Identifier: MIT
# Fish completion for selector, which knows by itself what may stand where.

function __selector_offers
    set -l words (commandline -opc)
    set -l typed (commandline -ct)
    set -l offers ($words[1] complete line -- $words[2..-1] "$typed" 2>/dev/null)
    if test "$offers" = :files
        set -l option (string match -r -- '^--[^=]*=' "$typed")
        __fish_complete_path (string replace -- "$option" '' "$typed") | string replace -r -- '^' "$option"
    else if test -n "$offers"
        printf '%s\n' $offers
    end
end

complete -c selector -f -a "(__selector_offers)"
