#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# The user units under a real service manager in the clean root of `check.sh`: a session's cycles feed the
# watchdog, an idle monitor is left alone, one that hangs is started again.
#
#     check_units.sh ROOT
#
# It ends with 3 where no control groups can be made.
set -euo pipefail
root=$1
limit=25 # seconds, of the watchdog; read cycles are 5 s apart

fail() {
    echo "user: FAILED: $1"
    as_user systemctl --user status --no-pager kiv-skyhold || true
    exit 1
}
as_user() {
    chroot "$root" setpriv --reuid astronomer --regid astronomer --clear-groups env -i PATH=/usr/bin:/bin \
        HOME=/home/astronomer LC_ALL=C.UTF-8 XDG_RUNTIME_DIR=/run/user/1000 \
        DBUS_SESSION_BUS_ADDRESS=unix:path=/run/user/1000/bus "$@"
}
show() {
    as_user systemctl --user show -P "$1" kiv-skyhold
}
until_true() {
    local end=$((SECONDS + $1))
    shift
    until "$@"; do
        ((SECONDS < end)) || return 1
        sleep 0.5
    done
}

# Either one hierarchy of control groups, or one for the manager among the old ones.
groups=()
for hierarchy in /sys/fs/cgroup /sys/fs/cgroup/systemd /sys/fs/cgroup/unified; do
    [[ -e $hierarchy/cgroup.procs ]] || continue
    mkdir -p "$hierarchy/skyhold-check" 2>/dev/null || exit 3
    chown -R 1000:1000 "$hierarchy/skyhold-check" || exit 3
    groups+=("$hierarchy/skyhold-check")
done
((${#groups[@]})) || exit 3
mkdir -p "$root/sys/fs/cgroup" "$root/run/systemd/system" "$root/run/user/1000"
mount --rbind /sys/fs/cgroup "$root/sys/fs/cgroup"
chown 1000:1000 "$root/run/user/1000"
chmod 700 "$root/run/user/1000"
home=$root/home/astronomer
mkdir -p "$home/.config/systemd/user/kiv-skyhold.service.d"
printf '[Service]\nWatchdogSec=%s\nRestartSec=1\n' "$limit" \
    >"$home/.config/systemd/user/kiv-skyhold.service.d/quick.conf"
chown -R 1000:1000 "$home/.config/systemd"

(
    for group in "${groups[@]}"; do echo "$BASHPID" >"$group/cgroup.procs"; done
    as_user /lib/systemd/systemd --user --log-target=null
) &
manager=$!
end() {
    as_user systemctl --user exit 2>/dev/null || true
    wait "$manager" 2>/dev/null || true
    umount -R "$root/sys/fs/cgroup" || true
    rm -rf "$home/.config/systemd" "$root/run/systemd/system"
    for group in "${groups[@]}"; do find "$group" -depth -type d -exec rmdir {} \; 2>/dev/null || true; done
}
trap end EXIT
until_true 10 as_user systemctl --user is-system-running >/dev/null 2>&1 || fail "the manager does not run"

as_user systemd-run --user --quiet --unit simulated-sensor Kiv_NubiloSim --scenario quick
as_user systemd-run --user --quiet --unit simulated-station \
    Kiv_StationSim --file /home/astronomer/weather/station.htm --scenario quick
as_user systemctl --user start kiv-skyhold || fail "kiv-skyhold does not start"
sleep $((limit + 10))
[[ $(show NRestarts) == 0 ]] || fail "cycles do not feed the watchdog"
echo "user: after $((limit + 10)) s of cycles: $(show ActiveState), restarts $(show NRestarts), \"$(show StatusText)\""
as_user skyholdctl stop
sleep $((limit + 10))
[[ $(show NRestarts) == 0 ]] || fail "an idle monitor was ended"
echo "user: after $((limit + 10)) s without a session: $(show ActiveState), restarts $(show NRestarts), \"$(show StatusText)\""
as_user skyholdctl start
sleep 7
as_user kill -STOP "$(show MainPID)"
restarted() {
    [[ $(show NRestarts) == 1 && $(show ActiveState) == active && $(show StatusText) == *afe:* ]]
}
until_true $((limit + 20)) restarted || fail "a monitor that hangs was not started again"
echo "user: after it was suspended: $(show ActiveState), restarts $(show NRestarts), \"$(show StatusText)\""
as_user systemctl --user stop kiv-skyhold
[[ $(show Result) == success ]] || fail "its end is $(show Result)"
as_user systemctl --user start skyhold-gateway || fail "skyhold-gateway does not start"
says() {
    [[ $(as_user systemctl --user show -P StatusText skyhold-gateway) == "$1" ]]
}
until_true 15 says "Does not hear the monitor: says unsafe" || fail "skyhold-gateway says nothing of its rounds"
echo "user: skyhold-gateway: $(as_user systemctl --user show -P StatusText skyhold-gateway)"
as_user systemctl --user stop skyhold-gateway
