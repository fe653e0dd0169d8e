#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Debian packages of what is built in build/release, in build/packages, and what the checkers of packages
# say of them. `build.sh FOLDER SUFFIX`: in another folder, of a version with that suffix.
set -euo pipefail
cd "$(dirname "$0")/.."
output=${1-build/packages}
suffix=${2-}
version=$(sed -n 's/^project(Kiv_Skyhold VERSION \([0-9.]*\).*/\1/p' CMakeLists.txt)$suffix
tree=$output/tree

rm -rf "$tree" "$output"/*.{deb,changes,buildinfo}
mkdir -p "$tree"
cp -r packaging/debian "$tree/debian"
cp packaging/copyright "$tree/debian/copyright"
cat >"$tree/debian/changelog" <<END
kiv-skyhold ($version) unstable; urgency=medium

  * CHANGELOG.md in kiv-skyhold-doc lists the changes.

 -- $(sed -n 's/^Maintainer: //p' packaging/debian/control)  $(date -R)
END
build=$PWD/build/release
log=$output/build.log
(cd "$tree" && SKYHOLD_BUILD=$build dpkg-buildpackage -b -us -uc -d --no-pre-clean) \
    >"$log" 2>&1 || { tail -n 30 "$log" >&2 && exit 1; }
ls "$output"/*.deb

status=0
desktop-file-validate packaging/kiv-skyhold.desktop || status=1
# Pictures of a program without a web site of its own come with it: the validator takes only addresses
# in the web, and has no switch for this finding.
findings=$(appstreamcli validate --no-net build/release/share/metainfo/*.xml |
    grep -E '^(E|W):' | grep -v 'web-url-expected file:///usr/share/doc/kiv-skyhold/') || true
[[ -z $findings ]] || { echo "$findings" && status=1; }
lintian --fail-on error,warning --suppress-tags-from-file packaging/lintian-accepted \
    "$output"/*.changes || status=1
((status == 0)) && echo "The checkers have found nothing that is not accepted with a reason."
exit "$status"
