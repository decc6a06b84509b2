#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Builds the Debian packages and tries them on a machine that has nothing else: installs them in a
# fresh Debian 12, works with them as an ordinary user, takes them away again, and says what held.
# Then the same for an installation by CMake that is moved afterwards.
#
#   packaging/try-package.sh [--root DIR]
#
# Needs root, debootstrap, the packages of the group `python`, and lintian for its remarks. DIR is a
# fresh root made by debootstrap before; it is copied. Takes about ten minutes, most of them for building and for downloads.
set -euo pipefail
cd "$(dirname "$0")/.."
fresh=
[ "${1:-}" = --root ] && fresh=$2

work=$(mktemp -d /var/tmp/try-package.XXXXXX)
root=$work/root
clean_up() {
    mountpoint -q "$root/proc" && umount "$root/proc"
    rm -rf --one-file-system "$work"
}
trap clean_up EXIT

held() { echo "ok: $*"; }
fail() {
    echo "FAILED: $*"
    exit 1
}
# in_root COMMAND...: as root of the fresh machine, with nothing of this one's environment.
in_root() {
    chroot "$root" env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin DEBIAN_FRONTEND=noninteractive "$@"
}
# apt_get ARGUMENT...: that of the fresh machine.
apt_get() { in_root apt-get -q -o DPkg::Lock::Timeout=600 "$@"; }
as_user() { in_root setpriv --reuid=researcher --regid=researcher --init-groups \
    env HOME=/home/researcher "$@"; }

# works RUN PROGRAM HOME: tries the program by a function above, in a home folder.
works() {
    local run=$1 program=$2 home=$3
    $run "$program" --version | grep -q '^Corvane ' || fail "$program --version"
    $run "$program" example "$home/example" >"$work/log" || fail "example: $(cat "$work/log")"
    $run "$program" compute --anatomy "$home/example/example.vmr" \
        --vtc "$home/example/example.vtc" --voi "$home/example/example.voi" --use-protocol \
        --out "$home/results" >"$work/log" || fail "compute: $(cat "$work/log")"
    grep -q ' 16 matrices$' "$work/log" || fail "compute says: $(cat "$work/log")"
    held "import and compute of the example: $(sed 's/.*: //' "$work/log")"
    $run "$program" tour --out "$home/tour" >"$work/log" 2>&1 || fail "tour: $(cat "$work/log")"
    held "the windows and the plugin: a tour of $($run sh -c "ls $home/tour/*.png | wc -l") pictures"
}

# computes RUN: tries the Python package by a function above, in its own environment.
computes() {
    $1 python3 -m nodalis --version | grep -q '^nodalis ' || fail "python3 -m nodalis --version"
    $1 python3 - >"$work/log" 2>&1 <<'END' || fail "Python: $(cat "$work/log")"
import numpy as np
import nodalis
rng = np.random.default_rng(1)
series = rng.normal(size=(10, 100, 20)).cumsum(axis=1)
cleaned = [nodalis.signals.clean(run, tr=2, high_pass=0.01).series for run in series]
stack = np.stack([np.corrcoef(run.T) for run in cleaned])
assert nodalis.local_efficiency(stack).shape == (10, 20)
assert nodalis.minimum_spanning_tree(stack[0]).edges.sum() == 2 * 19
found = nodalis.statistics.edgewise_glm(
    nodalis.statistics.fisher_z(stack).z, np.ones((10, 1)), [1], permutations=100)
print(nodalis.__file__, found.p_fwe.min())
END
    held "measures, cleaning and statistics from Python: $(cut -d' ' -f1 "$work/log")"
}

# leaves_nothing PACKAGE PATTERN: removes it and looks for files of those names.
leaves_nothing() {
    local left
    in_root dpkg -L "$1" >"$work/files"
    apt_get purge -y "$1" >"$work/log" 2>&1 || fail "$(tail -n 5 "$work/log")"
    in_root dpkg-query -W "$1" >/dev/null 2>&1 && fail "the package $1 is still known"
    left=$(grep -E "$2" "$work/files" |
        while read -r file; do [ -e "$root$file" ] && echo "$file"; done || true)
    [ -z "$left" ] || fail "left behind: $left"
    held "$1 is removed without a trace; the user's own files stay"
}

# ---- the packages
export CCACHE_BASEDIR=$PWD CCACHE_NOHASHDIR=1 TESSERA_REQUIRE_PYTHON=1
rm -f build/package/*.deb
cmake --preset package >"$work/log" 2>&1 || fail "$(cat "$work/log")"
cmake --build --preset package >"$work/log" 2>&1 || fail "$(cat "$work/log")"
package=$(echo build/package/corvane-tessera_*.deb)
python_package=$(echo build/package/python3-nodalis_*.deb)
for file in "$package" "$python_package"; do
    held "packed $(basename "$file"), $(($(stat -c %s "$file") / 1024)) KiB"
    if command -v lintian >/dev/null; then
        remarks=$(lintian --allow-root --fail-on none "$file" 2>/dev/null)
        [ -z "$remarks" ] || fail "lintian: $remarks"
        held "lintian has no remark"
    fi
done

# ---- a fresh machine
if [ -n "$fresh" ]; then
    cp -a "$fresh" "$root"
else
    debootstrap --variant=minbase bookworm "$root" >"$work/log" || fail "$(tail -n 5 "$work/log")"
fi
mount -t proc proc "$root/proc"
in_root useradd --create-home researcher
held "a fresh Debian $(cat "$root/etc/debian_version") with $(in_root dpkg-query -f '.\n' -W | wc -l) packages"

cp "$package" "$root/package.deb"
apt_get update >"$work/log" 2>&1 || fail "$(tail -n 5 "$work/log")"
apt_get install -y --no-install-recommends ./package.deb >"$work/log" 2>&1 ||
    fail "$(tail -n 5 "$work/log")"
held "installed with $(grep -c '^Setting up' "$work/log") packages"
in_root dpkg --verify corvane-tessera || fail "files differ from those of the package"

for file in $(in_root dpkg -L corvane-tessera | grep -E '/bin/|\.so'); do
    missing=$(in_root ldd "$file" | grep 'not found' || true)
    [ -z "$missing" ] || fail "$file: $missing"
done
held "every library is found"
for file in man/man1/Corvane.1.gz applications/corvane.desktop metainfo \
    icons/hicolor/scalable/apps/corvane.svg doc/corvane-tessera/copyright \
    doc/corvane-tessera/docs/users-guide.md doc/corvane-tessera/docs/pictures/ring.png \
    corvane/guide/users-guide.html corvane/guide/pictures/ring.png; do
    [ -e "$root/usr/share/$file" ] || fail "there is no /usr/share/$file"
done
held "manual page, desktop entry, icon, metadata, copyright and documents are in place"
works as_user Corvane /home/researcher

doc=$root/usr/share/doc/corvane-tessera
cmake -S "$doc/docs/plugin-example" -B "$work/plugin" >"$work/log" || fail "$(cat "$work/log")"
cmake --build "$work/plugin" >"$work/log" || fail "$(cat "$work/log")"
held "the example plugin builds from the installed documents"

leaves_nothing corvane-tessera 'corvane|Corvane|nodalis|tessera'

# ---- the Python package, without the other one
cp "$python_package" "$root/python.deb"
apt_get install -y --no-install-recommends ./python.deb >"$work/log" 2>&1 ||
    fail "$(tail -n 5 "$work/log")"
held "installed python3-nodalis with $(grep -c '^Setting up' "$work/log") packages"
in_root dpkg --verify python3-nodalis || fail "files of python3-nodalis differ"
[ -e "$root/usr/lib/python3/dist-packages/nodalis/__pycache__" ] || fail "nothing was compiled"
computes as_user
leaves_nothing python3-nodalis nodalis

# ---- an installation by CMake, moved
cmake --install build/package --prefix "$work/first" >"$work/install" 2>&1 ||
    fail "$(cat "$work/install")"
mv "$work/first" "$work/moved"
here() { env HOME="$work/home" "$@"; }
works here "$work/moved/bin/Corvane" "$work/home"
grep -q "For import nodalis set PYTHONPATH=$work/first/lib/python3/dist-packages" "$work/install" ||
    fail "cmake --install does not say which PYTHONPATH to set"
with_path() { env HOME="$work/home" PYTHONPATH="$work/moved/lib/python3/dist-packages" \
    PATH=/usr/bin:/bin "$@"; }
computes with_path
held "cmake --install, moved afterwards"
echo "The packages work."
