#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# A user's session with the installed programs; `check.sh` runs it in a clean root. Upgrades come from
# outside: the session makes ~/ready and waits for ~/upgraded.
set -euo pipefail
if [[ -z ${DBUS_SESSION_BUS_ADDRESS-} ]]; then
    export XDG_RUNTIME_DIR=$HOME/.runtime QT_QPA_PLATFORM=offscreen
    mkdir -m 700 "$XDG_RUNTIME_DIR"
    exec dbus-run-session -- "$0"
fi
cd
port=11987

say() {
    echo "user: $*"
}
fail() {
    echo "user: FAILED: $*"
    tail -n 20 ~/monitor.log || true
    exit 1
}
# until_true SECONDS COMMAND...
until_true() {
    local limit=$((SECONDS + $1))
    shift
    until "$@"; do
        ((SECONDS < limit)) || return 1
        sleep 0.3
    done
}
field() {
    local state
    state=$(skyholdctl status --json 2>/dev/null) || true # its exit status is the verdict
    grep -oE "\"$1\":(\"[^\"]*\"|[^,}]*)" <<<"$state" | head -n 1 | cut -d: -f2-
}
has_done() {
    local done_now
    done_now=$(field cycle)
    [[ ${done_now:-0} -ge $1 ]]
}
cycles() {
    until_true 90 has_done "$1" || fail "no $1 cycles"
    say "cycle $(field cycle): verdict $(field verdict), session $(field session)"
}
gateway_answers() {
    exec 3<>"/dev/tcp/127.0.0.1/$port" || return 1
    printf 'GET /api/status HTTP/1.1\r\nHost: localhost\r\nConnection: close\r\n\r\n' >&3
    answer=$(cat <&3)
    exec 3>&-
    [[ $answer == "HTTP/1.1 200"* && $answer == *'"session":"running"'* ]]
} 2>/dev/null
check_gateway() {
    until_true 30 gateway_answers || fail "the gateway does not answer"
    say "gateway: $(head -n 1 <<<"$answer" | tr -d '\r'), $(grep -oE '"verdict":"[^"]*"' <<<"$answer" | head -n 1)"
}

[[ ! -w /usr/bin ]] || fail "the folder of the programs can be written to"
systemd-analyze --user --man=no verify /usr/lib/systemd/user/*skyhold*.service || fail "the units"
say "the units are right: $(cd /usr/lib/systemd/user && echo *skyhold*)"
mkdir -p weather .config/Kiv
chmod 700 .config/Kiv
cat >.config/Kiv/Kiv_Skyhold.ini <<END
[Setup]
HTMFile=$HOME/weather/station.htm
Emulator=0
RefreshRead=0

[Network]
Serve=1
Port=$port
END
chmod 600 .config/Kiv/Kiv_Skyhold.ini

Kiv_NubiloSim --scenario quick &
simulated=$!
Kiv_StationSim --file weather/station.htm --scenario quick &
simulated+=" $!"
trap 'kill $simulated 2>/dev/null' EXIT
until_true 10 test -e weather/station.htm || fail "no station file"
Kiv_Skyhold --start --record >monitor.log 2>&1 &
monitor=$!
cycles 3
check_gateway
status=0
skyholdctl status || status=$?
((status < 2)) || fail "skyholdctl status ends with $status"
skyholdctl set ThreshGustCalm 12.5

touch ready
until_true 120 test -e upgraded || fail "it was not upgraded"
# The old programs run on, and what they start from now on is of the new version.
now=$(field cycle)
cycles $((now + 2))
check_gateway
kill -TERM "$monitor"
wait "$monitor" || fail "the monitor ends with $?"
say "the monitor that ran during the upgrade has ended in order"
! gateway_answers || fail "the gateway outlives the monitor"

# The bus starts the new one, without a window.
skyholdctl start || fail "skyholdctl start"
cycles 3
check_gateway
kept=$(skyholdctl get ThreshGustCalm)
[[ $kept == 12.5 ]] || fail "ThreshGustCalm is $kept"
say "kept: ThreshGustCalm $kept, $(skyholdctl get Version) runs"
skyholdctl history | tail -n 3
skyholdctl stop
pid=$(pgrep -x Kiv_Skyhold 2>/dev/null || grep -lx Kiv_Skyhold /proc/[0-9]*/comm | cut -d/ -f3)
kill -TERM $pid
until_true 15 test ! -e "/proc/$(head -n 1 <<<"$pid")" || fail "the monitor does not end"
say "what it said on standard error: $(grep -vc '^$' monitor.log || true) lines"
sed 's/^/user:   /' monitor.log
