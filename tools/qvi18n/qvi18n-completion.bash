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
        # Identifiers hold ":", which bash splits words at by default: count words by white space.
        local line=${COMP_LINE:0:COMP_POINT} word=""
        local -a typed
        read -r -a typed <<<"$line"
        local done=${#typed[@]}
        if [[ $line =~ [^[:space:]]$ ]]; then
            word=${typed[-1]}
            done=$((done - 1))
        fi
        if ((done == 2)); then
            mapfile -t COMPREPLY < <("${COMP_WORDS[0]}" complete "$word" 2>/dev/null)
            if [[ $COMP_WORDBREAKS == *:* && $word == *:* ]]; then
                local strip=${word%"${word##*:}"}
                COMPREPLY=("${COMPREPLY[@]#"$strip"}")
            fi
            [[ ${#COMPREPLY[@]} -eq 1 && ${COMPREPLY[0]} == *: ]] && compopt -o nospace 2>/dev/null
        fi
        ;;
    ls | map | check)
        mapfile -t COMPREPLY < <(compgen -d -- "$cur")
        ;;
    esac
}
complete -F _qvi18n qvi18n
