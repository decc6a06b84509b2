#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# try_zip.sh WORK: unpacks the ZIP in a fresh wine prefix, where nothing else is in reach, and does the
# example's main job from there.
set -euo pipefail
. "$(dirname "$0")/wine.sh"
work=$1
need_product "$work"
zip=$(realpath "$work"/corvane-tessera-*.zip)

fail() {
    echo "FAILED: $*"
    exit 1
}
rm -rf "$work/fresh"
use_prefix "$work/fresh"
wineserver -w
rm "$WINEPREFIX/dosdevices/z:" # the disk of this system

place="$WINEPREFIX/drive_c/My Programs (ö)"
mkdir "$place"
cd "$place"
cmake -E tar xf "$zip"
folder=$(basename "$zip" .zip)
program="C:\\My Programs (ö)\\$folder\\bin\\Corvane.exe"
find "$folder" -type f | grep -v '/doc/' | sort >"$work/fresh/files"
echo "unpacked: $(wc -l <"$work/fresh/files") files, and the documents"
for file in README.txt LICENSE.txt licenses/LGPL-3 lib/corvane/plugins/tessera.dll \
    doc/docs/users-guide.md doc/docs/pictures/ring.png \
    share/corvane/guide/users-guide.html share/corvane/guide/pictures/ring.png; do
    [ -s "$folder/$file" ] || fail "there is no $file"
done

# works LOG ARGUMENT...: runs the program in the folder of the user.
cd "$WINEPREFIX/drive_c/users/$(id -un)"
works() {
    local log=$work/fresh/$1
    under_wine "$log" "$program" "${@:2}" || fail "${*:2}: $(cat "$log")"
}
works version --version
grep -q '^Corvane ' "$work/fresh/version" || fail "--version says: $(cat "$work/fresh/version")"
works example example example
works compute compute --anatomy example/example.vmr --vtc example/example.vtc \
    --voi example/example.voi --use-protocol --plots --out results
cat "$work/fresh/compute"
grep -q ' 16 matrices$' "$work/fresh/compute" || fail "compute says something else"
[ "$(ls results/*.csv | wc -l)" = 34 ] || fail "there are other tables: $(ls results)"
[ "$(ls results/*.png | wc -l)" -gt 10 ] || fail "there are hardly any pictures: $(ls results)"
works tour tour --out tour
cat "$work/fresh/tour"
wineserver -k
