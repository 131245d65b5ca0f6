# bash completion for quillon
_quillon()
{
    local cur prev verb i
    COMPREPLY=()
    cur=${COMP_WORDS[COMP_CWORD]}
    prev=${COMP_WORDS[COMP_CWORD-1]}
    verb=
    for ((i = 1; i < COMP_CWORD; i++)); do
        case ${COMP_WORDS[i]} in
            add|list|remove|start|stop|launch-all|repeat|upcoming|export|import) verb=${COMP_WORDS[i]}; break ;;
        esac
    done
    case $prev in
        --repeat) COMPREPLY=($(compgen -W "daily weekdays weekends weekly monthly last-day yearly hourly" -- "$cur")); return ;;
        --missed) COMPREPLY=($(compgen -W "skip once 'within 1h'" -- "$cur")); return ;;
        --at|--rrule|--count) return ;;
    esac
    case $verb in
        '') COMPREPLY=($(compgen -W "add list remove start stop launch-all repeat upcoming export import --help --version --autostart" -- "$cur")) ;;
        add)
            if [[ $cur == -* ]]; then
                COMPREPLY=($(compgen -W "--at --start --repeat --rrule --missed" -- "$cur"))
            else
                compopt -o filenames 2>/dev/null
                COMPREPLY=($(compgen -f -- "$cur"))
            fi ;;
        export|import) compopt -o filenames 2>/dev/null; COMPREPLY=($(compgen -f -X '!*.ics' -- "$cur") $(compgen -d -- "$cur")) ;;
        list) COMPREPLY=($(compgen -W "--json" -- "$cur")) ;;
        remove|repeat|upcoming)
            if [[ $cur == -* ]]; then
                case $verb in
                    repeat) COMPREPLY=($(compgen -W "--none" -- "$cur")) ;;
                    upcoming) COMPREPLY=($(compgen -W "--count --json" -- "$cur")) ;;
                esac
            else
                # The rows the running Quillon lists, numbered as list shows them.
                COMPREPLY=($(compgen -W "$(quillon list --json 2>/dev/null | sed -n 's/.*"row": \([0-9]*\).*/\1/p')" -- "$cur"))
            fi ;;
    esac
}
complete -F _quillon quillon
