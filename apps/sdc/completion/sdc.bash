# Completion of sdc for bash: source it, or put it into the folder of bash-completion's own, under the name sdc.

_sdc() {
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]} command=${COMP_WORDS[1]}
    local words=""
    COMPREPLY=()
    if [[ $COMP_CWORD -eq 1 ]]; then
        mapfile -t COMPREPLY < <(compgen -W "scan plan console scenarios plot compare --help --version" -- "$current")
        return
    fi
    case $previous in
    --scenario)
        mapfile -t COMPREPLY < <(
            compgen -W "$("${COMP_WORDS[0]}" scenarios list --names 2>/dev/null)" -- "$current"
            compgen -f -X '!*.json' -- "$current"
        )
        return
        ;;
    --speed) words="real max" ;;
    --color) words="auto always never" ;;
    --trace) words="0 1 5 6 7" ;;
    --format) words="svg png text" ;;
    --channel | --repeat | --rows | --start-time | --threshold | --width | --height) return ;;
    --table | --csv | --json | --sweep | --plot | --output)
        mapfile -t COMPREPLY < <(compgen -f -- "$current")
        return
        ;;
    esac
    if [[ -n $words ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
        return
    fi
    case $command in
    scan) words="channel sub-band --scenario --channel --speed --repeat --table --csv --json --sweep --plot --rows --color --quiet --trace --start-time --help" ;;
    plan) words="--scenario --channel --speed --json --help" ;;
    console) words="--scenario --channel --speed --trace --help" ;;
    scenarios) words="list show check --names --help" ;;
    plot) words="--output --format --width --height --help" ;;
    compare) words="--threshold --help" ;;
    esac
    mapfile -t COMPREPLY < <(
        compgen -W "$words" -- "$current"
        case $command in
        plot | compare) compgen -f -X '!*.json' -- "$current" ;;
        scenarios) compgen -f -X '!*.json' -- "$current" ;;
        esac
    )
}

complete -F _sdc sdc
