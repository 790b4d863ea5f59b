# Completion of sdc for bash: source it, or put it into the folder of bash-completion's own, under the name sdc.

_sdc() {
    local words=() word whole kept="" dropped="" index last
    # Where = parts words for the shell, an option with its value comes in three of them.
    for ((index = 1; index <= COMP_CWORD; ++index)); do
        word=${COMP_WORDS[index]}
        last=$((${#words[@]} - 1))
        if ((last >= 0)) && [[ ($word == "=" && ${words[last]} == --*) || ${words[last]} == --*= ]]; then
            words[last]+=$word
        else
            words+=("$word")
        fi
    done
    whole=${words[${#words[@]} - 1]}
    if [[ $whole == --*=* ]]; then # what stands before the value: the shell replaces all of it, or the value alone
        [[ ${COMP_WORDS[COMP_CWORD]} == "$whole" ]] && kept=${whole%%=*}= || dropped=${whole%%=*}=
    fi
    COMPREPLY=()
    while read -r word; do
        if [[ $word == FILE ]]; then
            while read -r word; do
                COMPREPLY+=("$kept$word")
            done < <(compgen -f -- "${whole#"$kept$dropped"}")
            compopt -o filenames
        else
            COMPREPLY+=("${word#"$dropped"}")
        fi
    done < <("${COMP_WORDS[0]}" --complete "${words[@]}" 2>/dev/null)
}

complete -F _sdc sdc
