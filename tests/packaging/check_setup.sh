#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# How packages are installed beside another package manager: with commands of our own in place of
# those of Debian.
set -uo pipefail
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir "$work/bin"
failures=0

# command_is NAME: the command that the following lines on standard input are.
command_is() {
    { echo '#!/bin/sh'; cat; } >"$work/bin/$1"
    chmod +x "$work/bin/$1"
}
check() {
    "${@:2}" && return
    echo "failed: $1"
    failures=$((failures + 1))
}

command_is dpkg-query <<<'exit 1 # nothing is installed'
command_is id <<<'echo 0'
command_is sleep <<<'exit 0'
# Fails as the file "says" says, as many times as the file "failures" has lines.
command_is apt-get <<EOF
echo "\$*" >>$work/calls
[ -s $work/failures ] || exit 0
sed -i 1d $work/failures
cat $work/says >&2
exit 100
EOF
PATH=$work/bin:$PATH
. "$(dirname "$0")/../../packaging/setup.sh"

# installs FAILURES MESSAGE: installs with so many failures of apt-get first.
installs() {
    rm -f "$work/calls"
    seq "$1" >"$work/failures"
    echo "$2" >"$work/says"
    install_packages >"$work/out" 2>"$work/err"
}
calls() { wc -l <"$work/calls"; }

lock='E: Could not get lock /var/lib/apt/lists/lock. It is held by process 7 (apt-get)'
check "without another one it installs" installs 0 ""
check "it updates and installs" test "$(calls)" = 2
check "each call waits for dpkg" test "$(grep -c 'DPkg::Lock::Timeout=600' "$work/calls")" = 2

check "it waits for the lock of the lists" installs 3 "$lock"
check "and tries again" test "$(calls)" = 5
check "of which the waiting is told" test "$(grep -c 'waiting' "$work/out")" = 3

installs 9 'E: Unable to fetch some archives' && check "another failure is one" false
check "and is not tried again" test "$(calls)" = 1
check "with what apt-get said" grep -q 'Unable to fetch' "$work/err"
check "and what to do" grep -q 'apt-get install --no-install-recommends g++' "$work/err"

apt_patience=0
installs 9 "$lock" && check "patience has an end" false
check "with what apt-get said" grep -q 'held by process 7' "$work/err"

echo "$failures failures"
exit $((failures > 0))
