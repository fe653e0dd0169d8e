# SPDX-License-Identifier: GPL-3.0-or-later
# Completion of skyhold-gateway for bash.

_skyhold_gateway() {
    local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]}
    COMPREPLY=()
    case $before in
    --mqtt-password-file | --mqtt-ca | --hook)
        compopt -o filenames
        mapfile -t COMPREPLY < <(compgen -f -- "$word")
        ;;
    --http) mapfile -t COMPREPLY < <(compgen -W '127.0.0.1 0.0.0.0' -- "$word") ;;
    --discovery-port | --name | --elevation | --mqtt | --mqtt-user | --mqtt-prefix) ;;
    --mqtt-client-id | --mqtt-discovery | --hook-limit) ;;
    *)
        mapfile -t COMPREPLY < <(compgen -W '--http --discovery-port --allow-switch --name --elevation
            --mqtt --mqtt-user --mqtt-password-file --mqtt-tls --mqtt-ca --mqtt-prefix --mqtt-client-id
            --mqtt-discovery --hook --hook-limit --help --version' -- "$word")
        ;;
    esac
}

complete -F _skyhold_gateway skyhold-gateway
