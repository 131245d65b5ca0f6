# fish completion for quillon
set -l verbs add list remove start stop launch-all repeat upcoming export import
function __quillon_rows
    quillon list --json 2>/dev/null | string replace -rf '.*"row": (\d+).*' '$1'
end
complete -c quillon -f
complete -c quillon -n "not __fish_seen_subcommand_from $verbs" -a add -d 'Schedule files or folders'
complete -c quillon -n "not __fish_seen_subcommand_from $verbs" -a list -d 'Show the list'
complete -c quillon -n "not __fish_seen_subcommand_from $verbs" -a remove -d 'Remove rows'
complete -c quillon -n "not __fish_seen_subcommand_from $verbs" -a start -d 'Start the schedule'
complete -c quillon -n "not __fish_seen_subcommand_from $verbs" -a stop -d 'Stop the schedule'
complete -c quillon -n "not __fish_seen_subcommand_from $verbs" -a launch-all -d 'Open every item now'
complete -c quillon -n "not __fish_seen_subcommand_from $verbs" -a repeat -d 'Give rows a rule, or none'
complete -c quillon -n "not __fish_seen_subcommand_from $verbs" -a upcoming -d 'The next moments, in order'
complete -c quillon -n "not __fish_seen_subcommand_from $verbs" -a export -d 'The list as iCalendar'
complete -c quillon -n "not __fish_seen_subcommand_from $verbs" -a import -d "Add a calendar's events"
complete -c quillon -n "__fish_seen_subcommand_from add" -F
complete -c quillon -n "__fish_seen_subcommand_from add" -l at -x -d 'When'
complete -c quillon -n "__fish_seen_subcommand_from add" -l start -d 'Start the schedule too'
complete -c quillon -n "__fish_seen_subcommand_from add" -l repeat -x -a 'daily weekdays weekends weekly monthly last-day yearly hourly'
complete -c quillon -n "__fish_seen_subcommand_from add" -l rrule -x -d 'An iCalendar rule'
complete -c quillon -n "__fish_seen_subcommand_from add" -l missed -x -a 'skip once'
complete -c quillon -n "__fish_seen_subcommand_from list upcoming" -l json -d 'As JSON'
complete -c quillon -n "__fish_seen_subcommand_from upcoming" -l count -x
complete -c quillon -n "__fish_seen_subcommand_from repeat" -l none -d 'Take the rule away'
complete -c quillon -n "__fish_seen_subcommand_from remove repeat upcoming" -x -a '(__quillon_rows)'
complete -c quillon -n "__fish_seen_subcommand_from export import" -F
