# SPDX-License-Identifier: GPL-3.0-or-later
# Completion of skyholdctl for bash. Member names are asked from the running monitor, which this
# never starts.

_skyholdctl() {
    local word=${COMP_WORDS[COMP_CWORD]} command='' position=0 options='' words='' i
    COMPREPLY=()
    for ((i = 1; i < COMP_CWORD; ++i)); do
        case ${COMP_WORDS[i]} in
        --every | --since | --until | --set | --from-csv | --database) ((++i)) ;;
        --broker | --user | --password-file | --ca | --prefix | --wait) ((++i)) ;;
        -*) ;;
        *) if [[ -z $command ]]; then command=${COMP_WORDS[i]}; else ((++position)); fi ;;
        esac
    done
    case ${COMP_WORDS[COMP_CWORD - 1]} in
    --every | --since | --until | --set | --broker | --user | --prefix | --wait) return 0 ;;
    --from-csv | --database | --password-file | --ca)
        compopt -o filenames
        mapfile -t COMPREPLY < <(compgen -f -- "$word")
        return 0
        ;;
    esac

    case $command in
    '') words='status roof-status watch why history replay check-station fleet get set call list start stop help version' ;;
    watch) options='--json --every' ;;
    why) options='--json --database' ;;
    history) options='--since --until --events --readings --json --csv --database' ;;
    replay) options='--since --until --set --from-csv --suggest --json --database' ;;
    fleet) options='--json --broker --user --password-file --tls --ca --prefix --wait' ;;
    status | get | call | list) options='--json' ;;
    esac
    case $command:$position in
    check-station:0) mapfile -t COMPREPLY < <(compgen -f -- "$word") && return 0 ;;
    get:0 | set:0 | call:0 | watch:*)
        # The kinds that the command takes; "list" shows the name first and then the kind.
        local kinds='^.*'
        case $command in
        set) kinds='^property$' ;;
        call) kinds='^method$' ;;
        esac
        words=$(skyholdctl list 2>/dev/null |
            while read -r name kind _; do [[ $kind =~ $kinds ]] && echo "$name"; done)
        ;;
    esac
    [[ $word != -* ]] || words=$options
    # Names compare without regard to case.
    local candidate
    for candidate in $words; do
        [[ ${candidate,,} != "${word,,}"* ]] || COMPREPLY+=("$candidate")
    done
}

complete -F _skyholdctl skyholdctl
