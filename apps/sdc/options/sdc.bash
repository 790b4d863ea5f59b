# Completion of sdc for bash: source it, or put it into the folder of bash-completion's own, under the name sdc.

_sdc() {
    local word
    COMPREPLY=()
    while read -r word; do
        if [[ $word == FILE ]]; then
            compopt -o default
        else
            COMPREPLY+=("$word")
        fi
    done < <("${COMP_WORDS[0]}" --complete "${COMP_WORDS[@]:1:COMP_CWORD}" 2>/dev/null)
}

complete -F _sdc sdc
