# SPDX-License-Identifier: GPL-3.0-or-later
# Completion of skyhold-sensor for bash.

_skyhold_sensor() {
    local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]}
    COMPREPLY=()
    case $before in
    --settings | --station)
        compopt -o filenames
        mapfile -t COMPREPLY < <(compgen -f -- "$word")
        ;;
    --indi | --seconds) ;;
    *)
        mapfile -t COMPREPLY < <(compgen -W '--settings --setup --list --indi --check --seconds
            --preview --station --help' -- "$word")
        ;;
    esac
}

complete -F _skyhold_sensor skyhold-sensor
