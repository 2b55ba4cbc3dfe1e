# bash completion for qvi18n: subcommands, and message identifiers from the catalogs.
# Source it, or install it as share/bash-completion/completions/qvi18n.
_qvi18n()
{
    local cur=${COMP_WORDS[COMP_CWORD]}
    if ((COMP_CWORD == 1)); then
        mapfile -t COMPREPLY < <(compgen -W "status message complete convert ls map check" -- "$cur")
        return
    fi
    case ${COMP_WORDS[1]} in
    message | complete)
        if ((COMP_CWORD == 2)); then
            # Identifiers hold ":", which bash splits words at by default.
            local word=$cur
            if [[ $COMP_LINE =~ [[:space:]]([^[:space:]]*)$ ]]; then word=${BASH_REMATCH[1]}; fi
            mapfile -t COMPREPLY < <("${COMP_WORDS[0]}" complete "$word" 2>/dev/null)
            if [[ $COMP_WORDBREAKS == *:* && $word == *:* ]]; then
                local strip=${word%"${word##*:}"}
                COMPREPLY=("${COMPREPLY[@]#"$strip"}")
            fi
            [[ ${#COMPREPLY[@]} -eq 1 && ${COMPREPLY[0]} == *: ]] && compopt -o nospace
        fi
        ;;
    ls | map | check)
        mapfile -t COMPREPLY < <(compgen -d -- "$cur")
        ;;
    esac
}
complete -F _qvi18n qvi18n
