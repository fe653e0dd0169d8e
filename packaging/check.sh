#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Installs the packages in a clean root, runs them there as an ordinary user, upgrades them under the
# running monitor, and removes them. Everything is in build/packages/check.log, too.
set -euo pipefail
cd "$(dirname "$0")/.."
[[ $(id -u) == 0 ]] || exec sudo "$0" "$@"
packages=$PWD/build/packages # as ./dev package has left them
exec > >(tee "$packages/check.log") 2>&1

# Mounts and processes end with this script.
if [[ -z ${SKYHOLD_CHECK-} ]]; then
    SKYHOLD_CHECK=1 exec unshare --mount --pid --fork --kill-child "$0"
fi
root=$(mktemp -d)
clean() {
    local mounted
    for mounted in sys/fs/cgroup dev proc; do umount -R "$root/$mounted" 2>/dev/null || true; done
    rm -rf --one-file-system "$root"
}
trap clean EXIT

step() {
    printf '\n== %s (%s s)\n' "$1" "$SECONDS"
}
fail() {
    echo "FAILED: $1"
    exit 1
}
in_root() {
    chroot "$root" env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/root LC_ALL=C.UTF-8 \
        DEBIAN_FRONTEND=noninteractive "$@"
}
version_of() {
    in_root dpkg-query -W -f '${Version}' "$1"
}
names() {
    in_root dpkg-query -W -f '${db:Status-Abbrev} ${Package}\n' | sed -n 's/^ii *//p' | sort
}
everything() {
    in_root find / -xdev -not -path '/proc/*' -not -path '/dev/*' | sort
}

step "a clean root"
# The packages of the system come from where this machine gets them.
apt-config dump | grep -E '^Acquire::(https?|Check|Languages)' >"$root.conf" || true
read -r codename < <(. /etc/os-release && echo "$VERSION_CODENAME")
mapfile -t sources < <(grep -lE "\b$codename\b" /etc/apt/sources.list /etc/apt/sources.list.d/* 2>/dev/null |
    xargs -r grep -lE 'debian-archive-keyring|^deb .*debian')
mmdebstrap --quiet --mode=root --variant=apt --aptopt="$root.conf" "$codename" "$root" "${sources[@]}"
rm "$root.conf"
cp /etc/resolv.conf /etc/hosts "$root/etc/"
mount -t proc proc "$root/proc"
mount --rbind /dev "$root/dev"
printf '#!/bin/sh\nexit 101\n' >"$root/usr/sbin/policy-rc.d" # no system service starts
chmod +x "$root/usr/sbin/policy-rc.d"
in_root useradd --create-home --shell /bin/bash astronomer
mkdir -p "$root/srv/first" "$root/srv/second"
cp "$packages"/*.deb "$root/srv/first/"
cp "$packages"/next/*.deb "$root/srv/second/"
install -m 755 packaging/check_session.sh "$root/srv/"
echo "$(in_root dpkg-query -W -f '.\n' | wc -l) packages, Debian $codename"
before=$(everything)
packages_before=$(names)

step "apt install ./*.deb"
in_root bash -c 'apt-get -qq update && cd /srv/first && apt-get -qq install -y ./*.deb >/var/log/install.txt'
in_root dpkg-query -W -f '${db:Status-Abbrev} ${Package} ${Version}\n' 'kiv-skyhold*'
first=$(version_of kiv-skyhold)
in_root bash -c 'for name in skyholdctl Kiv_Skyhold skyhold-gateway; do $name --version; done' || fail "a version"

step "a session of an ordinary user, and an upgrade in it"
in_root runuser -l astronomer -c /srv/check_session.sh 2> >(grep -v 'Reloaded configuration') &
session=$!
waited=0
until [[ -e $root/home/astronomer/ready ]]; do
    kill -0 "$session" 2>/dev/null || { wait "$session" || true; fail "the session has ended"; }
    ((waited++ < 120)) || fail "the session is not ready for the upgrade"
    sleep 1
done
in_root bash -c 'cd /srv/second && apt-get -qq install -y ./*.deb >/var/log/upgrade.txt'
second=$(version_of kiv-skyhold)
[[ $second != "$first" ]] || fail "it was not upgraded"
echo "root: upgraded from $first to $second"
touch "$root/home/astronomer/upgraded"
wait "$session" || fail "the session"

step "the units under a service manager"
units=0
packaging/check_units.sh "$root" || units=$?
case $units in
0) ;;
3) echo "Not run: no control groups can be made here." ;;
*) fail "the units" ;;
esac

own() {
    in_root find /home/astronomer -type f -not -name '.bash*' -not -name .profile | sort
}
user_files=$(own)

step "apt remove, apt purge, apt autoremove"
in_root bash -c "apt-get -qq remove -y 'kiv-skyhold*' >/var/log/remove.txt"
in_root dpkg-query -W -f '${db:Status-Abbrev} ${Package}\n' 'kiv-skyhold*' || true
in_root bash -c "apt-get -qq purge -y 'kiv-skyhold*' && apt-get -qq autoremove --purge -y" >/dev/null
[[ $(own) == "$user_files" ]] || fail "the user's files are not what they were"
echo "The user's files:"
echo "$user_files"

step "what is left"
# Packages that others, too, recommend stay; and so do the package manager's logs and caches.
stayed=$(comm -13 <(echo "$packages_before") <(names))
echo "Debian's packages that are still wanted by others: ${stayed:-none}"
left=$(comm -13 <(echo "$before") <(everything) | comm -23 - <(in_root dpkg-query -L $stayed dpkg | sort -u) |
    grep -vE '^/(home/astronomer|etc/ssl/certs|sys|var/(cache|log|lib/(apt|dpkg|systemd))|tmp|run)(/|$)') || true
echo "${left:-nothing}"
! grep -qiE 'kiv|skyhold' <<<"$left" || fail "something of the program is left"
step "All steps passed"
