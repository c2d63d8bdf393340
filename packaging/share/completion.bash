# Completion of tarvik and its tools for bash: what a program offers is read from its own --help.

_tarvik_offers()
{
    local help
    help=$("$1" --help 2>/dev/null) || return
    grep -oE -- '(^|[][ |,])--?[A-Za-z][A-Za-z-]*' <<<"$help" | grep -oE -- '--?[A-Za-z-]+'
    sed -nE "s/^(Usage:)? +${1##*/} ([a-z]+) .*/\2/p" <<<"$help"
}

_tarvik()
{
    local word=${COMP_WORDS[COMP_CWORD]} program=$1
    local IFS=$'\n'
    compopt -o filenames 2>/dev/null
    COMPREPLY=()
    if [[ $word == -* ]]; then
        compopt +o filenames 2>/dev/null
        COMPREPLY=($(compgen -W "$(_tarvik_offers "$program" | grep '^-' | sort -u)" -- "$word"))
    else
        if ((COMP_CWORD == 1)); then
            COMPREPLY=($(compgen -W "$(_tarvik_offers "$program" | grep '^[a-z]' | sort -u)" -- "$word"))
        fi
        COMPREPLY+=($(compgen -f -- "$word"))
    fi
}

complete -F _tarvik tarvik tarvik-image tarvik-demo-data tarvik-control-unit-simulator
